#pragma once

#include <array>
#include <cstdint>
#include <span>

/// CRC-32 (IEEE 802.3), by which a GUID partition table is checked (UEFI specification, section 5.3.2).
namespace crc32 {

inline constexpr std::array<std::uint32_t, 256> kTable = [] {
  constexpr std::uint32_t kPolynomial = 0xEDB88320;  // 04C11DB7, its bits in reverse
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t sum = byte;
    for (int bit = 0; bit < 8; ++bit) sum = (sum & 1U) != 0 ? sum >> 1U ^ kPolynomial : sum >> 1U;
    table[byte] = sum;
  }
  return table;
}();

inline std::uint32_t sum(std::span<const std::uint8_t> bytes) {
  std::uint32_t state = ~0U;
  for (const std::uint8_t byte : bytes) state = state >> 8U ^ kTable[(state ^ byte) & 0xFFU];
  return ~state;
}

}  // namespace crc32
