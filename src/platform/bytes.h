#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Numbers in byte layouts, read and written one byte at a time. The caller sees to the bounds.
namespace bytes {

/// A number of `size` bytes, at most 8, least significant byte first.
inline std::uint64_t le(std::span<const std::uint8_t> data, std::size_t at, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = value << 8U | data[at + i];
  return value;
}

inline void put_le(std::span<std::uint8_t> data, std::size_t at, std::size_t size, std::uint64_t value) {
  for (std::size_t i = 0; i < size; ++i) data[at + i] = static_cast<std::uint8_t>(value >> (8U * i) & 0xFFU);
}

inline std::uint16_t le16(std::span<const std::uint8_t> data, std::size_t at) {
  return static_cast<std::uint16_t>(le(data, at, 2));
}

inline std::uint32_t le32(std::span<const std::uint8_t> data, std::size_t at) {
  return static_cast<std::uint32_t>(le(data, at, 4));
}

inline std::uint64_t le64(std::span<const std::uint8_t> data, std::size_t at) {
  return le(data, at, 8);
}

/// Two and four bytes, most significant byte first.
inline std::uint16_t be16(std::span<const std::uint8_t> data, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<unsigned>(data[at]) << 8U | data[at + 1]);
}

inline std::uint32_t be32(std::span<const std::uint8_t> data, std::size_t at) {
  return static_cast<std::uint32_t>(data[at]) << 24U | static_cast<std::uint32_t>(data[at + 1]) << 16U |
         static_cast<std::uint32_t>(data[at + 2]) << 8U | data[at + 3];
}

}  // namespace bytes
