#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Numbers in byte layouts, read and written one byte at a time. The caller sees to the bounds.
namespace bytes {

inline std::uint16_t le16(std::span<const std::uint8_t> data, std::size_t at) {
  return static_cast<std::uint16_t>(data[at] | data[at + 1] << 8U);
}

inline std::uint32_t le32(std::span<const std::uint8_t> data, std::size_t at) {
  return static_cast<std::uint32_t>(le16(data, at)) | static_cast<std::uint32_t>(le16(data, at + 2)) << 16U;
}

inline std::uint64_t le64(std::span<const std::uint8_t> data, std::size_t at) {
  return le32(data, at) | static_cast<std::uint64_t>(le32(data, at + 4)) << 32U;
}

inline std::uint32_t be32(std::span<const std::uint8_t> data, std::size_t at) {
  return static_cast<std::uint32_t>(data[at]) << 24U | static_cast<std::uint32_t>(data[at + 1]) << 16U |
         static_cast<std::uint32_t>(data[at + 2]) << 8U | data[at + 3];
}

inline void put_le16(std::span<std::uint8_t> data, std::size_t at, std::uint16_t value) {
  data[at] = static_cast<std::uint8_t>(value);
  data[at + 1] = static_cast<std::uint8_t>(value >> 8U);
}

inline void put_le32(std::span<std::uint8_t> data, std::size_t at, std::uint32_t value) {
  put_le16(data, at, static_cast<std::uint16_t>(value));
  put_le16(data, at + 2, static_cast<std::uint16_t>(value >> 16U));
}

}  // namespace bytes
