#pragma once

#include <cstdint>
#include <optional>

#include "health/health.h"
#include "measure/measure.h"

/// The drive's health around an operation, and the verdict that comes of it and of what the run met.
struct DriveHealth {
  std::optional<Health> before;
  std::optional<Health> after;    // absent where the operation did not come to its end
  std::uint64_t runs_before = 0;  // measure.runs when it began: what was measured earlier is not of this operation
};

inline DriveHealth drive_health;

/// True for a failure that says something of the selected drive, not of what the program may do or asked for.
bool is_of_the_drive(const TransferError& error);

/// The drive was identified and its first SMART snapshot taken: asks it how it is. What was found of a run before is
/// forgotten.
void begin_drive_health();

/// The second SMART snapshot was taken: asks once more, and judges. Where the drive was never found there is nothing to
/// ask, and no verdict but NO DATA.
void end_drive_health();
