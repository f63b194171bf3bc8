#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "measure/measure.h"

/// Giving back what an interrupted test wrote over: the undo journals that it left.

/// A place that a journal can give back.
struct Restorable {
  int drive = 0;
  std::string what;  // "LBA 8 to 15 of drive 1 (model, serial number S1)"
  std::string serial;
  std::string file;
};

/// Looks at every journal in the places for them, and at the disks that they name. Deletes those whose places hold
/// their former contents. `lines` tells what was found, a line for each journal that stays; `restorable` what can be
/// given back.
struct LeftOver {
  std::vector<std::string> lines;
  std::vector<Restorable> restorable;
};
LeftOver look_for_journals();

/// The command that gives the former contents back to the selected drive: written, read again, compared, and the
/// journal deleted.
std::optional<RunPlan> plan_restore();
void restore_contents(const RunPlan& plan);
void report_restore();

/// What the command has in hand. Tests start fresh by `{}`.
struct RestoreRun {
  std::string file;
  std::vector<std::uint8_t> former;
  std::string problem;  // why the contents are not on the disk again
};

inline RestoreRun restore_run;
