#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// CRC-32C (Castagnoli; RFC 3720, appendix B.4), eight bytes a step.
namespace crc32c {

inline constexpr std::size_t kStep = 8;
using Tables = std::array<std::array<std::uint32_t, 256>, kStep>;

/// Row n: what a byte does to the sum when n more bytes follow it in its step.
inline constexpr Tables kTables = [] {
  constexpr std::uint32_t kPolynomial = 0x82F63B78;  // 1EDC6F41, its bits in reverse
  Tables tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t sum = byte;
    for (int bit = 0; bit < 8; ++bit) sum = (sum & 1U) != 0 ? sum >> 1U ^ kPolynomial : sum >> 1U;
    tables[0][byte] = sum;
  }
  for (std::size_t row = 1; row < kStep; ++row) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t before = tables[row - 1][byte];
      tables[row][byte] = before >> 8U ^ tables[0][before & 0xFFU];
    }
  }
  return tables;
}();

/// The sum of `bytes` behind bytes whose sum is `before`; 0 for none.
inline std::uint32_t sum(std::span<const std::uint8_t> bytes, std::uint32_t before = 0) {
  std::uint32_t state = ~before;
  while (bytes.size() >= kStep) {
    const std::array<std::uint32_t, 4> low = {bytes[0] ^ (state & 0xFFU), bytes[1] ^ (state >> 8U & 0xFFU),
                                              bytes[2] ^ (state >> 16U & 0xFFU), bytes[3] ^ (state >> 24U)};
    state = kTables[7][low[0]] ^ kTables[6][low[1]] ^ kTables[5][low[2]] ^ kTables[4][low[3]] ^ kTables[3][bytes[4]] ^
            kTables[2][bytes[5]] ^ kTables[1][bytes[6]] ^ kTables[0][bytes[7]];
    bytes = bytes.subspan(kStep);
  }
  for (const std::uint8_t byte : bytes) state = state >> 8U ^ kTables[0][(state ^ byte) & 0xFFU];
  return ~state;
}

}  // namespace crc32c
