#include "virtualdisk/smart.h"

#include "platform/bytes.h"

namespace virtualdisk {
namespace {

constexpr std::uint16_t kRevision = 0x0010;
constexpr std::size_t kEntries = 30;
constexpr std::size_t kFirstEntry = 2;
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kRawInEntry = 5;
constexpr std::size_t kRawBytes = 6;
constexpr std::size_t kChecksum = 511;
static_assert(kFirstEntry + kEntries * kEntryBytes < kChecksum);

/// Offset of the first entry with `id`, or 0.
std::size_t entry_of(const Page& page, std::uint8_t id) {
  for (std::size_t i = 0; i < kEntries; ++i) {
    const std::size_t entry = kFirstEntry + i * kEntryBytes;
    if (page[entry] == id) return entry;
  }
  return 0;
}

unsigned bit(Event event) {
  return 1U << static_cast<unsigned>(event);
}

/// Adds to a raw value and keeps the page's checksum as right, or as wrong, as it was.
void add_to_raw(Page& page, std::size_t entry, std::uint64_t step) {
  const std::size_t raw = entry + kRawInEntry;
  unsigned before = 0;
  unsigned after = 0;
  for (std::size_t i = 0; i < kRawBytes; ++i) before += page[raw + i];
  bytes::put_le(page, raw, kRawBytes, bytes::le(page, raw, kRawBytes) + step);
  for (std::size_t i = 0; i < kRawBytes; ++i) after += page[raw + i];
  page[kChecksum] = static_cast<std::uint8_t>((page[kChecksum] + before - after) & 0xFF);
}

}  // namespace

Page attribute_page(std::span<const Attribute> attributes) {
  Page page{};
  bytes::put_le(page, 0, 2, kRevision);
  std::size_t entry = kFirstEntry;
  for (const Attribute& attribute : attributes) {
    page[entry] = attribute.id;
    bytes::put_le(page, entry + 1, 2, attribute.flags);
    page[entry + 3] = attribute.current;
    page[entry + 4] = attribute.worst;
    bytes::put_le(page, entry + kRawInEntry, kRawBytes, attribute.raw);
    entry += kEntryBytes;
  }
  page[kChecksum] = page_checksum(page);
  return page;
}

Page threshold_page(std::span<const Attribute> attributes) {
  Page page{};
  bytes::put_le(page, 0, 2, kRevision);
  std::size_t entry = kFirstEntry;
  for (const Attribute& attribute : attributes) {
    page[entry] = attribute.id;
    page[entry + 1] = attribute.threshold;
    entry += kEntryBytes;
  }
  page[kChecksum] = page_checksum(page);
  return page;
}

bool has_attribute(const Page& attributes, std::uint8_t id) {
  return entry_of(attributes, id) != 0;
}

std::uint8_t low_raw_byte(const Page& attributes, std::uint8_t id) {
  const std::size_t entry = entry_of(attributes, id);
  return entry == 0 ? std::uint8_t{0} : attributes[entry + kRawInEntry];
}

bool reached_threshold(const Smart& smart) {
  for (std::size_t i = 0; i < kEntries; ++i) {
    const std::size_t at = kFirstEntry + i * kEntryBytes;
    const std::uint8_t id = smart.attributes[at];
    const std::size_t threshold = id == 0 ? 0 : entry_of(smart.thresholds, id);
    if (threshold == 0 || (smart.attributes[at + 1] & 1U) == 0) continue;
    const std::uint8_t least = smart.thresholds[threshold + 1];
    if (least != 0 && smart.attributes[at + 3] <= least) return true;
  }
  return false;
}

Smart make_smart(const DiskFile& disk, const Page& attributes, const Page& thresholds) {
  Smart smart;
  smart.attributes = attributes;
  smart.thresholds = thresholds;
  smart.growth = disk.growth;
  for (const Growth& growth : disk.growth) smart.growing |= bit(growth.event);
  return smart;
}

void grow(Smart& smart, Event event) {
  if ((smart.growing & bit(event)) == 0) return;
  for (const Growth& growth : smart.growth) {
    if (growth.event == event) add_to_raw(smart.attributes, entry_of(smart.attributes, growth.id), growth.step);
  }
}

}  // namespace virtualdisk
