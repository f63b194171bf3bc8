#include "buffer/partition_table.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "buffer/hex_text.h"
#include "form/number_text.h"
#include "platform/bytes.h"

namespace {

// Classic master boot record: four entries of 16 bytes, the first at byte 446.
constexpr std::size_t kTableOffset = 446;
constexpr std::size_t kEntrySize = 16;
constexpr std::size_t kEntries = 4;
constexpr std::size_t kStatus = 0;
constexpr std::size_t kStart = 1;  // head, sector with the cylinder's high bits, cylinder's low byte
constexpr std::size_t kType = 4;
constexpr std::size_t kEnd = 5;  // as at kStart
constexpr std::size_t kStartLba = 8;
constexpr std::size_t kSize = 12;  // in sectors

constexpr unsigned kActive = 0x80;
constexpr unsigned kSectorBits = 0x3F;
constexpr unsigned kCylinderBits = 0xC0;
constexpr double kSectorsPerGB = 2048.0 * 1024.0;

// "unknown" is the name of 0D; an id outside the table has none.
constexpr std::array<std::string_view, 16> kTypeNames{"",
                                                      "12-bit FAT",
                                                      "XENIX",
                                                      "",
                                                      "16-bit FAT",
                                                      "EXT (8GB max)",
                                                      "16-bit FAT (32GB max)",
                                                      "NTFS",
                                                      "OS2",
                                                      "AIX",
                                                      "Coherent",
                                                      "FAT32 (2047GB max)",
                                                      "FAT32LBA (2047GB max)",
                                                      "unknown",
                                                      "FAT16LBA",
                                                      "EXTLBA"};

using Entry = std::span<const std::uint8_t, kEntrySize>;

std::string position_text(Entry entry, std::size_t at) {
  const unsigned cylinder = entry[at + 2] + (entry[at + 1] & kCylinderBits) * 4;
  return "CYL:" + std::to_string(cylinder) + " HD:" + std::to_string(unsigned{entry[at]}) +
         " SEC:" + std::to_string(entry[at + 1] & kSectorBits);
}

std::string sectors_text(std::int64_t sectors) {
  return std::to_string(sectors) + " (" + hex_padded(static_cast<std::uint64_t>(sectors), 1) + ")";
}

std::string entry_text(std::size_t number, Entry entry, std::int64_t per_logical) {
  const std::uint8_t type = entry[kType];
  const std::int64_t start = bytes::le32(entry, kStartLba) * per_logical;
  const std::int64_t size = bytes::le32(entry, kSize) * per_logical;
  std::string text = "\r\n\r\nPartition " + std::to_string(number) +
                     " (SIZE=" + fixed_text(static_cast<double>(size) / kSectorsPerGB, 3) +
                     "GB)  Type: " + hex_padded(type, 1) + " ";
  if (type < kTypeNames.size()) text += kTypeNames[type];
  text += (entry[kStatus] & kActive) != 0 ? " ACTIVE" : "       ";
  text += "\r\nSTART POS = " + position_text(entry, kStart) + "  END POS = " + position_text(entry, kEnd);
  text += "\r\nSTART (LBA) = " + sectors_text(start) + "   SIZE (LBA) = " + sectors_text(size);
  return text;
}

}  // namespace

std::string partition_table_text(std::span<const std::uint8_t> sector, std::int64_t per_logical) {
  std::string text;
  for (std::size_t i = 0; i < kEntries; ++i) {
    const std::size_t at = kTableOffset + i * kEntrySize;
    if (at + kEntrySize > sector.size()) break;
    text += entry_text(i + 1, sector.subspan(at).first<kEntrySize>(), per_logical);
  }
  return text;
}
