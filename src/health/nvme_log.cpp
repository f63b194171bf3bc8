#include <algorithm>
#include <limits>

#include "health/pages.h"
#include "platform/bytes.h"

namespace {

constexpr std::size_t kLogBytes = 512;
constexpr std::uint8_t kWhole = 100;  // percent

/// A counter of 16 bytes.
std::uint64_t counter(Bytes page, std::size_t at) {
  const Bytes high = page.subspan(at + 8, 8);
  const bool fits = std::all_of(high.begin(), high.end(), [](std::uint8_t byte) { return byte == 0; });
  return fits ? bytes::le64(page, at) : std::numeric_limits<std::uint64_t>::max();
}

bool all_are(Bytes page, std::uint8_t value) {
  return std::all_of(page.begin(), page.end(), [value](std::uint8_t byte) { return byte == value; });
}

}  // namespace

bool take_nvme_log(Bytes page, Health* health) {
  constexpr std::size_t kFields = 232;  // behind them all is reserved
  if (page.size() < kLogBytes || all_are(page, 0) || all_are(page.first(kFields), 0xFF)) return false;
  const std::uint8_t spare = page[3];
  if (spare > kWhole) return false;
  Health& h = *health;
  h.protocol = HealthProtocol::nvme;
  h.answered = true;
  h.critical_warning = page[0];
  const int kelvin = bytes::le16(page, 1);
  if (kelvin != 0) h.celsius = kelvin - kKelvin;
  h.spare = spare;
  if (page[4] <= kWhole) h.spare_threshold = page[4];
  h.used = page[5];
  h.data_read = counter(page, 32);
  h.data_written = counter(page, 48);
  h.power_cycles = counter(page, 112);
  h.power_on_hours = counter(page, 128);
  h.unsafe_shutdowns = counter(page, 144);
  h.media_errors = counter(page, 160);
  h.error_log_entries = counter(page, 176);
  h.warning_minutes = bytes::le32(page, 192);
  h.critical_minutes = bytes::le32(page, 196);
  return true;
}
