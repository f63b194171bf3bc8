#include "smart/identify_data.h"

#include <utility>

#include "platform/bytes.h"

namespace {

std::string swapped_text(std::span<const std::uint8_t> data, std::size_t at, std::size_t length) {
  const auto part = data.subspan(at, length);
  return SwapBytes(std::string(part.begin(), part.end()));
}

/// Words with bit 15 clear and bit 14 set.
bool is_valid(unsigned word) {
  return (word & 0xC000) == 0x4000;
}

/// A word that is not valid says nothing: sectors of 512 bytes.
SectorSizes sizes_in(std::span<const std::uint8_t> data) {
  constexpr std::size_t kWord106 = 212;
  constexpr std::size_t kWord117 = 234;
  constexpr std::size_t kWord209 = 418;
  constexpr unsigned kLongLogical = 0x1000;    // longer than 256 words
  constexpr unsigned kLargePhysical = 0x2000;  // several logical ones in a physical one
  constexpr unsigned kExponent = 0x000F;
  constexpr unsigned kOffset = 0x3FFF;  // in logical sectors
  SectorSizes sizes;
  if (data.size() < kWord209 + 2 || !is_valid(bytes::le16(data, kWord106))) return sizes;
  const unsigned word = bytes::le16(data, kWord106);
  if ((word & kLongLogical) != 0) {
    const std::int64_t bytes = 2 * std::int64_t{bytes::le32(data, kWord117)};
    if (is_sector_size(bytes)) sizes.logical = bytes;
  }
  const std::int64_t physical = sizes.logical << ((word & kLargePhysical) != 0 ? word & kExponent : 0U);
  sizes.physical = is_sector_size(physical) ? physical : sizes.logical;
  const unsigned alignment = bytes::le16(data, kWord209);
  if (is_valid(alignment)) sizes.offset = (alignment & kOffset) * sizes.logical % sizes.physical;
  return sizes;
}

}  // namespace

IdentifyData decode_identify(std::span<const std::uint8_t> data) {
  IdentifyData facts;
  facts.cylinders = bytes::le16(data, 2);
  facts.heads = bytes::le16(data, 6);
  facts.sectors_per_track = bytes::le16(data, 12);
  facts.serial = swapped_text(data, 20, 20);
  facts.firmware = swapped_text(data, 46, 8);
  facts.model = swapped_text(data, 54, 40);
  facts.current_sectors_per_track = bytes::le16(data, 112);
  facts.sectors = bytes::le32(data, 120);
  facts.sizes = sizes_in(data);
  return facts;
}

std::string SwapBytes(std::string text) {
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) std::swap(text[i], text[i + 1]);
  return text;
}
