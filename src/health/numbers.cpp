#include "health/numbers.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

template <Count Health::*count>
std::optional<std::int64_t> counted(const Health& health) {
  const Count& value = health.*count;
  if (!value) return std::nullopt;
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(std::min(*value, kMost));
}

template <auto Health::*number>
std::optional<std::int64_t> plain(const Health& health) {
  const auto& value = health.*number;
  return value ? std::optional<std::int64_t>(*value) : std::nullopt;
}

constexpr std::array<HealthNumber, 24> kNumbers = {{
    {"temperature_celsius", "temperature, degrees Celsius", "TEMP", false, plain<&Health::celsius>},
    {"warning_temperature_celsius", "temperature limit", "TEMP_LIMIT", false, plain<&Health::warning_celsius>},
    {"critical_temperature_celsius", "critical temperature", nullptr, false, plain<&Health::critical_celsius>},
    {"critical_warning", "critical warning bits", "CRITICAL", false, plain<&Health::critical_warning>},
    {"spare_percent", "spare, percent", "SPARE", false, plain<&Health::spare>},
    {"spare_threshold_percent", "spare threshold, percent", nullptr, false, plain<&Health::spare_threshold>},
    {"used_percent", "endurance used, percent", "USED", false, plain<&Health::used>},
    {"media_errors", "media errors", "MEDIA_ERRORS", true, counted<&Health::media_errors>},
    {"reallocated_sectors", "reallocated sectors", "REALLOCATED", true, counted<&Health::reallocated>},
    {"pending_sectors", "pending sectors", "PENDING", true, counted<&Health::pending>},
    {"uncorrectable_sectors", "uncorrectable sectors", "UNCORRECTABLE", true, counted<&Health::uncorrectable>},
    {"reported_uncorrectable_errors", "reported uncorrectable errors", "REPORTED_UNCORRECTABLE", true,
     counted<&Health::reported_uncorrectable>},
    {"crc_errors", "interface CRC errors", "CRC_ERRORS", true, counted<&Health::crc_errors>},
    {"read_errors_uncorrected", "uncorrected read errors", "READ_UNCORRECTED", true,
     counted<&Health::read_uncorrected>},
    {"write_errors_uncorrected", "uncorrected write errors", "WRITE_UNCORRECTED", true,
     counted<&Health::write_uncorrected>},
    {"grown_defects", "grown defects", "GROWN_DEFECTS", true, counted<&Health::grown_defects>},
    {"unsafe_shutdowns", "unsafe shutdowns", "UNSAFE_SHUTDOWNS", true, counted<&Health::unsafe_shutdowns>},
    {"power_cycles", "power cycles", "POWER_CYCLES", false, counted<&Health::power_cycles>},
    {"power_on_hours", "power-on hours", "HOURS", false, counted<&Health::power_on_hours>},
    {"data_units_read_512000_bytes", "data read, 512,000 bytes", nullptr, false, counted<&Health::data_read>},
    {"data_units_written_512000_bytes", "data written, 512,000 bytes", nullptr, false, counted<&Health::data_written>},
    {"warning_temperature_minutes", "minutes above the limit", nullptr, false, counted<&Health::warning_minutes>},
    {"critical_temperature_minutes", "minutes above critical", nullptr, true, counted<&Health::critical_minutes>},
    {"error_log_entries", "error-log entries", nullptr, false, counted<&Health::error_log_entries>},
}};

}  // namespace

std::span<const HealthNumber> health_numbers() {
  return kNumbers;
}
