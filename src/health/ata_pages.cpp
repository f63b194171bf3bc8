#include <algorithm>
#include <numeric>

#include "health/pages.h"
#include "platform/bytes.h"

namespace {

constexpr std::size_t kPageBytes = 512;
constexpr std::size_t kEntries = 30;
constexpr std::size_t kFirstEntry = 2;
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kRawAt = 5;
constexpr std::size_t kRawBytes = 6;

Bytes entry(Bytes page, std::size_t index) {
  return page.subspan(kFirstEntry + index * kEntryBytes, kEntryBytes);
}

bool is_whole(Bytes page) {
  return page.size() >= kPageBytes &&
         std::accumulate(page.begin(), page.begin() + kPageBytes, 0U) % 256 == 0;  // its last byte sees to that
}

std::uint8_t threshold_of(Bytes thresholds, std::uint8_t id) {
  for (std::size_t i = 0; i < kEntries; ++i) {
    if (entry(thresholds, i)[0] == id) return entry(thresholds, i)[1];
  }
  return 0;
}

Count raw_of(const Health& health, std::uint8_t id) {
  const HealthAttribute* const found = attribute_of(health, id);
  return found == nullptr ? Count() : Count(found->raw);
}

/// A count of sectors. No drive has four thousand million to spare: what stands above them is another count.
Count sectors_of(const Health& health, std::uint8_t id, bool packs_counts) {
  constexpr std::uint64_t kMost = 0xFFFFFFFF;
  constexpr std::uint64_t kLowWord = 0xFFFF;
  const Count raw = raw_of(health, id);
  return raw && (packs_counts || *raw > kMost) ? Count(*raw & kLowWord) : raw;
}

/// The low byte of 194, or of the air flow's 190; drives without a sensor say 0.
std::optional<int> celsius_of(const Health& health) {
  for (const std::uint8_t id : {std::uint8_t{194}, std::uint8_t{190}}) {
    const int low = static_cast<int>(raw_of(health, id).value_or(0) & 0xFFU);
    if (low != 0) return low;
  }
  return std::nullopt;
}

}  // namespace

const HealthAttribute* attribute_of(const Health& health, std::uint8_t id) {
  const auto found = std::find_if(health.attributes.begin(), health.attributes.end(),
                                  [id](const HealthAttribute& attribute) { return attribute.id == id; });
  return found == health.attributes.end() ? nullptr : &*found;
}

bool take_ata_pages(Bytes attributes, Bytes thresholds, bool packs_counts, Health* health) {
  if (!is_whole(attributes)) return false;
  const bool has_thresholds = is_whole(thresholds);
  std::vector<HealthAttribute> found;
  for (std::size_t i = 0; i < kEntries; ++i) {
    const Bytes e = entry(attributes, i);
    if (e[0] == 0) continue;
    found.push_back({.id = e[0],
                     .flags = bytes::le16(e, 1),
                     .current = e[3],
                     .worst = e[4],
                     .threshold = has_thresholds ? threshold_of(thresholds, e[0]) : std::uint8_t{0},
                     .raw = bytes::le(e, kRawAt, kRawBytes)});
  }
  if (found.empty()) return false;
  Health& h = *health;
  h.protocol = HealthProtocol::ata;
  h.answered = true;
  h.attributes = std::move(found);
  h.reallocated = sectors_of(h, 5, packs_counts);
  h.reported_uncorrectable = raw_of(h, 187);
  h.pending = sectors_of(h, 197, packs_counts);
  h.uncorrectable = sectors_of(h, 198, packs_counts);
  h.crc_errors = raw_of(h, 199);
  h.power_cycles = raw_of(h, 12);
  if (const std::optional<int> celsius = celsius_of(h)) h.celsius = celsius;
  return true;
}

std::optional<bool> status_of_registers(std::uint8_t cylinder_low, std::uint8_t cylinder_high) {
  if (cylinder_low == 0x4F && cylinder_high == 0xC2) return false;
  if (cylinder_low == 0xF4 && cylinder_high == 0x2C) return true;
  return std::nullopt;
}

std::optional<bool> status_of_sense(Bytes sense) {
  constexpr std::uint8_t kFixed = 0x70;
  constexpr std::uint8_t kDescriptors = 0x72;
  constexpr std::uint8_t kAtaReturn = 9;
  constexpr std::uint8_t kAtaReturnBytes = 12;
  constexpr std::uint8_t kInformation = 0x1D;  // ATA pass-through information available
  constexpr std::size_t kFirst = 8;
  if (sense.size() >= kFirst + 14 && sense[0] == kDescriptors && sense[kFirst] == kAtaReturn &&
      sense[kFirst + 1] == kAtaReturnBytes) {
    return status_of_registers(sense[kFirst + 9], sense[kFirst + 11]);
  }
  if (sense.size() >= 14 && sense[0] == kFixed && sense[12] == 0 && sense[13] == kInformation)
    return status_of_registers(sense[10], sense[11]);
  return std::nullopt;
}

std::optional<Bytes> identify_in(Bytes page) {
  constexpr std::uint8_t kNumber = 0x89;
  constexpr std::size_t kIdentifyAt = 60;
  constexpr std::size_t kCommandAt = 56;
  constexpr std::uint8_t kIdentifyDevice = 0xEC;
  if (page.size() < kIdentifyAt + kPageBytes || page[1] != kNumber || page[kCommandAt] != kIdentifyDevice)
    return std::nullopt;
  return page.subspan(kIdentifyAt, kPageBytes);
}
