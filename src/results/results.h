#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "form/outcome.h"
#include "platform/clock.h"
#include "results/result.h"

/// The result files, /CSV to /HTML: written at the end of every operation, each time anew.
struct Results {
  std::string version;
  std::string unmeasured_name;
  std::uint64_t runs_before = 0;  // measure.runs when the command began
  platform::DateTime command_local;
  platform::DateTime command_utc;
  bool open = false;             // a command runs whose files are still to be written
  std::optional<Result> last{};  // of the last operation that ended
};

inline Results results;

/// A command begins: rows of its transfers go to the CSV file. `version` is the program's,
/// `unmeasured_name` what the files call the command should nothing be measured.
void begin_results(const std::string& version, const std::string& unmeasured_name);

/// True once the command that runs has begun an operation.
bool measured_something();

/// What runs, or the last run, in the words of the result files: "read", "smart".
std::string operation_name();

/// A command has ended: the files are written if it was an operation, and its outcome is told. A failure is told, and
/// stops nothing; a run of /OP ends with its own exit code then.
void finish_results();

/// A run of /OP has ended before its command began. Its outcome is told, and its JSON document written.
void tell_unstarted(const std::string& version, Outcome outcome, const std::string& reason);

/// The exact bad sectors of the last operation are known now: its page gets them. Requires: there is a last operation.
void add_to_last_results();

/// Why no page can be saved; empty if one can.
std::string why_no_page();

/// Asks for a file and writes the page of the last operation into it. Requires: there is one.
void save_page();

/// The program ends, perhaps in the middle of a command: the files get what was measured so far, as a cancelled run's.
/// No SMART data and no events of its end are among it.
void leave_results();
