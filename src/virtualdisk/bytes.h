#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// Numbers in byte layouts, least significant byte first. The offset plus the number's size must lie inside the span.
namespace virtualdisk {

inline constexpr std::int64_t kSectorBytes = 512;

/// 512 bytes that a drive answers.
using Page = std::array<std::uint8_t, 512>;

inline std::uint64_t get_le(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = value << 8 | bytes[at + i];
  return value;
}

inline void put_le(std::span<std::uint8_t> bytes, std::size_t at, std::size_t size, std::uint64_t value) {
  for (std::size_t i = 0; i < size; ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i) & 0xFF);
}

/// The byte that makes the sum of all 512 bytes 0 modulo 256 when it stands last.
inline std::uint8_t page_checksum(const Page& page) {
  unsigned sum = 0;
  for (std::size_t i = 0; i + 1 < page.size(); ++i) sum += page[i];
  return static_cast<std::uint8_t>((0x100 - (sum & 0xFF)) & 0xFF);
}

}  // namespace virtualdisk
