#pragma once

#include <cstdint>
#include <optional>

#include "health/health.h"
#include "measure/findings.h"

/// What a run met.
struct RunTotals {
  std::int64_t failed_transfers = 0;  // by the drive's doing; the system's refusals are no sign of a bad drive
  std::int64_t compare_errors = 0;
  std::int64_t slow_transfers = 0;
  std::optional<int> highest_celsius{};  // between its transfers
};

/// Judges a drive by what it said before and after a run, and by what the run met. Error-log entries of an NVMe drive
/// decide nothing: hosts provoke them. A snapshot after the run that contradicts the one before it (a lifetime counter
/// that fell) is not believed.
Verdict judge(const Health& before, const Health& after, const RunTotals& totals);
