#include "virtualdisk/identify.h"

#include <algorithm>

#include "platform/bytes.h"
#include "platform/units.h"

namespace virtualdisk {
namespace {

void put_word(Page& page, std::size_t word, std::uint64_t value) {
  bytes::put_le(page, 2 * word, 2, value);
}

void put_words(Page& page, std::size_t word, std::size_t words, std::int64_t value) {
  bytes::put_le(page, 2 * word, 2 * words, static_cast<std::uint64_t>(value));
}

/// An ATA string: two characters a word, the first in the high byte, blanks at the end.
void put_text(Page& page, std::size_t word, std::size_t words, const std::string& text) {
  for (std::size_t i = 0; i < 2 * words; ++i) {
    page[2 * word + (i ^ 1U)] = i < text.size() ? static_cast<std::uint8_t>(text[i]) : std::uint8_t{' '};
  }
}

constexpr std::size_t kSizesWord = 106;
constexpr std::size_t kLogicalWord = 117;
constexpr std::uint64_t kSizesValid = 0x4000;
constexpr std::uint64_t kLongLogical = 0x1000;
constexpr std::uint64_t kLargePhysical = 0x2000;
constexpr std::uint64_t kExponent = 0x000F;

/// Left at zero, which says 512 bytes too, by drives that have nothing else to say.
void put_sector_sizes(Page& page, const Identity& identity) {
  if (identity.physical == SectorSize) return;
  std::uint64_t sizes = kSizesValid;
  if (identity.logical > SectorSize) {
    sizes |= kLongLogical;
    put_words(page, kLogicalWord, 2, identity.logical / 2);
  }
  std::uint64_t exponent = 0;
  while (identity.logical << exponent < identity.physical) ++exponent;
  if (exponent > 0) sizes |= kLargePhysical | exponent;
  put_word(page, kSizesWord, sizes);
}

}  // namespace

std::int64_t physical_bytes(const Page& page) {
  const std::uint64_t word = bytes::le16(page, 2 * kSizesWord);
  if ((word & 0xC000) != kSizesValid) return SectorSize;
  const bool is_long = (word & kLongLogical) != 0;
  const std::int64_t logical = is_long ? 2 * std::int64_t{bytes::le32(page, 2 * kLogicalWord)} : SectorSize;
  return logical << ((word & kLargePhysical) != 0 ? word & kExponent : 0);
}

std::string identify_text(const Page& page, std::size_t word, std::size_t words) {
  std::string text;
  for (std::size_t i = 0; i < 2 * words; ++i) text += static_cast<char>(page[2 * word + (i ^ 1U)]);
  const std::size_t end = text.find_last_not_of(std::string_view(" \0", 2));
  return text.substr(0, end == std::string::npos ? 0 : end + 1);
}

Page identify_page(const Identity& identity) {
  constexpr std::int64_t kHeads = 16;
  constexpr std::int64_t kTrackSectors = 63;
  constexpr std::int64_t kMostCylinders = 16383;
  constexpr std::int64_t kMost28Bit = 0x0FFFFFFF;
  constexpr std::int64_t kMost48Bit = 0xFFFFFFFFFFFF;
  const std::int64_t cylinders = std::min(kMostCylinders, identity.sectors / (kHeads * kTrackSectors));
  const std::uint64_t smart_enabled = identity.smart_enabled ? 1 : 0;

  Page page{};
  put_word(page, 0, 0x0040);  // a fixed ATA device
  put_word(page, 1, static_cast<std::uint64_t>(cylinders));
  put_word(page, 3, kHeads);
  put_word(page, 6, kTrackSectors);
  put_text(page, 10, 10, identity.serial);
  put_text(page, 23, 4, identity.firmware);
  put_text(page, 27, 20, identity.model);
  put_word(page, 49, 0x0F00);  // LBA, DMA, IORDY
  put_word(page, 53, 0x0007);  // words 54 to 58, 64 to 70 and 88 are valid
  put_word(page, 54, static_cast<std::uint64_t>(cylinders));
  put_word(page, 55, kHeads);
  put_word(page, 56, kTrackSectors);
  put_words(page, 57, 2, cylinders * kHeads * kTrackSectors);
  put_words(page, 60, 2, std::min(identity.sectors, kMost28Bit));
  put_word(page, 63, 0x0007);                                                 // multiword DMA 0 to 2
  put_word(page, 64, 0x0003);                                                 // PIO 3 and 4
  for (std::size_t word = 65; word <= 68; ++word) put_word(page, word, 120);  // cycle times, ns
  put_word(page, 80, 0x01F0);                                                 // ATA/ATAPI-4 to ATA8-ACS
  put_word(page, 82, 0x0061);                                                 // SMART, write cache, look-ahead
  put_word(page, 83, 0x7400);                                                 // 48-bit addresses, flush cache
  put_word(page, 84, 0x4000);                                                 // the word is valid
  put_word(page, 85, 0x0060 | smart_enabled);                                 // what is enabled of words 82 to 84
  put_word(page, 86, 0x3400);
  put_word(page, 87, 0x4000);
  put_word(page, 88, 0x007F);  // Ultra DMA 0 to 6
  put_words(page, 100, 4, std::min(identity.sectors, kMost48Bit));
  put_sector_sizes(page, identity);
  page[510] = 0xA5;  // integrity word: signature, checksum
  page[511] = page_checksum(page);
  return page;
}

}  // namespace virtualdisk
