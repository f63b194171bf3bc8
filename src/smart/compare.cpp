#include "smart/compare.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "disk/counters.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "smart/identification.h"

namespace {

constexpr std::uint8_t kPowerOnId = 9;
constexpr std::uint8_t kTemperatureId = 194;
constexpr std::uint8_t kAtaDrive = 1;

// In the order in which they are compared. Id 10 is listed and feeds no variable.
constexpr std::array<std::uint8_t, 11> kCompared = {1, 5, 7, 9, 10, 11, 12, 196, 194, 198, 199};

const Smart_Attribute* find(const Snapshot& snapshot, std::uint8_t id) {
  const auto found = std::find_if(snapshot.Attributes.begin(), snapshot.Attributes.end(),
                                  [id](const Smart_Attribute& attribute) { return attribute.Attr_Id == id; });
  return found == snapshot.Attributes.end() ? nullptr : &*found;
}

/// `value` in ten characters; blanks where it is absent.
std::string left_aligned(const std::optional<std::int64_t>& value) {
  constexpr std::size_t kWidth = 10;
  std::string text = value ? std::to_string(*value) : std::string();
  if (text.size() < kWidth) text.resize(kWidth, ' ');
  return text;
}

/// One attribute before and after. A value that a snapshot lacks counts as 0.
struct Pair {
  std::optional<std::int64_t> before;
  std::optional<std::int64_t> after;
  std::string name;
  std::int64_t difference() const { return after.value_or(0) - before.value_or(0); }
};

Pair pair_of(const Snapshot& before, std::uint8_t id) {
  const Smart_Attribute* const old_one = find(before, id);
  const Smart_Attribute* const new_one = find(smart.Smart_Snapshot, id);
  Pair pair;
  if (old_one != nullptr) pair = {old_one->Raw, {}, old_one->Attr_Name};
  if (new_one != nullptr) pair = {pair.before, new_one->Raw, new_one->Attr_Name};
  if (pair.name.empty()) pair.name = AttName(id);
  return pair;
}

/// Where an id's difference is kept, or null for ids whose final value counts and for id 10.
std::optional<std::int64_t>* kept_difference(std::uint8_t id) {
  switch (id) {
    case 1:
      return &comparison.read_errors;
    case 5:
      return &comparison.reallocated_sectors;
    case 7:
      return &comparison.seek_error_rate;
    case 11:
      return &comparison.calibration_retries;
    case 12:
      return &comparison.power_cycles;
    case 196:
      return &comparison.reallocation_events;
    case 198:
      return &comparison.uncorrectable_sectors;
    case 199:
      return &comparison.udma_crc_errors;
    default:
      return nullptr;
  }
}

/// Compares every attribute of the list and keeps the values. Returns a line for each.
std::string compare_attributes(const Snapshot& before) {
  PrintReport("Compare_Smart_info " + std::to_string(form1.SelectedDrive) + " was called OK - " +
              std::to_string(smart.Smart_Snapshot.Attr_Count) + " Attributes to Parse!");
  std::string lines;
  for (const std::uint8_t id : kCompared) {
    const Pair pair = pair_of(before, id);
    lines += three_digits(id) + " " + pair.name + " was " + left_aligned(pair.before) + " now " +
             left_aligned(pair.after) + " DIFFERENCE=" + std::to_string(pair.difference()) + "\r\n";
    if (std::optional<std::int64_t>* const kept = kept_difference(id)) *kept = pair.difference();
    if (id == kTemperatureId) comparison.final_temperature = pair.after;
    if (id == kPowerOnId) {
      comparison.final_power_on =
          power_on_hours(pair.after.value_or(0), pair.difference(), static_cast<double>(elapsed_seconds()));
    }
  }
  return lines;
}

void classify() {
  constexpr std::int64_t kHottest = 79;  // degrees
  const auto changed = [](const std::optional<std::int64_t>& value) {
    return static_cast<std::int16_t>(value.value_or(0) != 0);
  };
  Comparison& c = comparison;
  const bool hot = c.final_temperature.value_or(0) > kHottest;
  c.errors = static_cast<std::int16_t>(changed(c.power_cycles) + changed(c.uncorrectable_sectors) +
                                       changed(c.reallocated_sectors) + changed(c.seek_error_rate) + (hot ? 1 : 0));
  c.warnings = static_cast<std::int16_t>(changed(c.calibration_retries) + changed(c.reallocation_events) +
                                         changed(c.udma_crc_errors) + (progress.SlowXfers != 0 ? 1 : 0));
  c.info = changed(c.read_errors);
}

std::string line(const char* name, const std::string& value) {
  return std::string(name) + value + "\r\n";
}

std::string kept_text(const std::optional<std::int64_t>& value) {
  return value ? std::to_string(*value) : std::string();
}

/// Whole hours; nothing for 0 and for a value never kept.
std::string hours_text(const std::optional<double>& hours) {
  const std::string text = fixed_text(hours.value_or(0.0), 0);
  return text == "0" ? std::string() : text;
}

/// A drive's own text as a command interpreter may read it: a drive can say anything.
std::string harmless(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return std::string_view("&|<>^%!\"").find(c) != std::string_view::npos; },
      '_');
  return text;
}

std::string size_variables() {
  const std::int64_t sectors = identification.Drive_Sectors;
  // 512 / 1,000,000 is 8 / 15625; split, since sectors x 8 need not fit.
  constexpr std::int64_t kUnit = 15625;
  const std::int64_t decimal_mb = sectors / kUnit * 8 + sectors % kUnit * 8 / kUnit;
  constexpr std::int64_t kMbPerGb = 1024;
  return line("SET QV_D_SECTORS=", std::to_string(sectors)) + line("SET QV_D_SIZE_DECMB=", std::to_string(decimal_mb)) +
         // Binary gigabytes beside decimal megabytes: docs/oddities.md, 2.
         line("SET QV_D_SIZE_GB=", std::to_string(sectors / kSectorsPerMb / kMbPerGb));
}

std::string rate_variables() {
  return line("SET QV_D_XFER_RATE_AV=", std::to_string(progress.average_rate)) +
         line("SET QV_D_XFER_RATE_L=", double_text(std::floor(progress.LowRate))) +
         line("SET QV_D_XFER_RATE_H=", double_text(progress.HighRate)) +
         line("SET QV_D_SLOW_XFERS=", std::to_string(progress.SlowXfers));
}

std::string smart_variables() {
  const Comparison& c = comparison;
  return line("SET QV_S_READ_ERR=", kept_text(c.read_errors)) +
         line("SET QV_S_REALLOC_SECT=", kept_text(c.reallocated_sectors)) +
         line("SET QV_S_SEEK_ERR_RATE=", kept_text(c.seek_error_rate)) +
         line("SET QV_S_CALIB_RETRY=", kept_text(c.calibration_retries)) +
         line("SET QV_S_POWER_CYCLE=", kept_text(c.power_cycles)) +
         line("SET QV_S_FINAL_POWER_ON_HOURS=", hours_text(c.final_power_on)) +
         line("SET QV_S_FINAL_TEMP=", kept_text(c.final_temperature)) +
         line("SET QV_S_REALLOC_EVENTS=", kept_text(c.reallocation_events)) +
         line("SET QV_S_UNCORRECTABLE=", kept_text(c.uncorrectable_sectors)) +
         line("SET QV_S_UDMA_CRC=", kept_text(c.udma_crc_errors)) + line("SET QV_S_ERRORS=", std::to_string(c.errors)) +
         line("SET QV_S_WARNINGS=", std::to_string(c.warnings)) + line("SET QV_S_INFO=", std::to_string(c.info));
}

std::string identity_variables(std::string (*shown)(std::string)) {
  return line("SET QV_D_MODEL=", shown(identification.Disk_Model)) +
         line("SET QV_D_SNO=", shown(identification.Disk_Serial)) +
         line("SET QV_D_FIRMWARE=", shown(identification.Disk_Firmware));
}

}  // namespace

double power_on_hours(std::int64_t final_value, std::int64_t growth, double elapsed) {
  constexpr double kShortest = 70.0;  // seconds; a shorter operation tells nothing about the unit
  constexpr double kPerHour = 3600.0;
  constexpr double kPerMinute = 60.0;
  auto value = static_cast<double>(final_value);
  if (growth <= 0 || elapsed <= kShortest) return value;
  const auto grown = static_cast<double>(growth);
  if (grown > elapsed - 10.0) value /= kPerHour;
  // A counter in seconds meets both tests and is divided twice: docs/oddities.md, 3.
  if (grown > elapsed / kPerMinute - 1.0) value /= kPerMinute;
  return value;
}

void Compare_smart_info(const Snapshot& before) {
  std::string lines;
  comparison.errors = comparison.warnings = comparison.info = 0;
  if (smart.Smart_Snapshot.Drive_Type == kAtaDrive) {
    lines = compare_attributes(before);
    classify();
  }
  const std::string rest = size_variables() + rate_variables() + smart_variables();
  AppendReportVars(identity_variables(harmless) + rest);
  form1.Text1.append(identity_variables([](std::string text) { return text; }) + rest);
  if (lines.empty()) lines = "Warning: No SMART data available";
  PrintReport(lines);
  form1.Text1.append("\r\nSMART DATA\r\n" + lines);
  add_to_exit_code(comparison.errors);
}
