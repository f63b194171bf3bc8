#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace virtualdisk {

/// 512 bytes that a drive answers.
using Page = std::array<std::uint8_t, 512>;

/// The byte that makes the sum of all 512 bytes 0 modulo 256 when it stands last.
inline std::uint8_t page_checksum(const Page& page) {
  unsigned sum = 0;
  for (std::size_t i = 0; i + 1 < page.size(); ++i) sum += page[i];
  return static_cast<std::uint8_t>((0x100 - (sum & 0xFF)) & 0xFF);
}

}  // namespace virtualdisk
