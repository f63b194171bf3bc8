#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "smart/snapshot.h"

/// What the last comparison kept for the report variables; empty before the first one. Differences are after minus
/// before.
struct Comparison {
  std::optional<std::int64_t> read_errors;
  std::optional<std::int64_t> reallocated_sectors;
  std::optional<std::int64_t> seek_error_rate;
  std::optional<std::int64_t> calibration_retries;
  std::optional<std::int64_t> power_cycles;
  std::optional<double> final_power_on;  // hours, as far as the correction can tell
  std::optional<std::int64_t> final_temperature;
  std::optional<std::int64_t> reallocation_events;
  std::optional<std::int64_t> uncorrectable_sectors;
  std::optional<std::int64_t> udma_crc_errors;
  std::int16_t errors = 0;
  std::int16_t warnings = 0;
  std::int16_t info = 0;
};

inline Comparison comparison;

/// Compares the snapshot taken before the operation with smart.Smart_Snapshot, writes the drive's and the SMART report
/// variables, shows the comparison in Text1 and adds the errors to the exit code.
void Compare_smart_info(const Snapshot& before);

/// The final power-on value in hours, for a counter that grew by `growth` during `elapsed` seconds.
double power_on_hours(std::int64_t final_value, std::int64_t growth, double elapsed);
