#pragma once

#include <cstdint>
#include <string>

#include "platform/clock.h"

/// The result files of /CSV, /JSON and /GRAPH: written at the end of every operation, each time anew.
struct Results {
  std::string version;
  std::string unmeasured_name;
  std::uint64_t runs_before = 0;  // measure.runs when the command began
  platform::DateTime command_local;
  platform::DateTime command_utc;
  bool open = false;  // a command runs whose files are still to be written
};

inline Results results;

/// A command begins: rows of its transfers go to the CSV file. `version` is the program's,
/// `unmeasured_name` what the files call the command should nothing be measured.
void begin_results(const std::string& version, const std::string& unmeasured_name);

/// True once the command that runs has begun an operation.
bool measured_something();

/// What runs, or the last run, in the words of the result files: "read", "smart".
std::string operation_name();

/// A command has ended: the files are written if it was an operation. A failure is told, and stops nothing.
void finish_results();

/// The program ends, perhaps in the middle of a command: the files get what was measured so far, as a cancelled run's.
/// No SMART data and no events of its end are among it.
void leave_results();
