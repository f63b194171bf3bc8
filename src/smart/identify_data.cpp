#include "smart/identify_data.h"

#include <utility>

#include "platform/bytes.h"

namespace {

std::string swapped_text(std::span<const std::uint8_t> data, std::size_t at, std::size_t length) {
  const auto part = data.subspan(at, length);
  return SwapBytes(std::string(part.begin(), part.end()));
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
  return facts;
}

std::string SwapBytes(std::string text) {
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) std::swap(text[i], text[i + 1]);
  return text;
}
