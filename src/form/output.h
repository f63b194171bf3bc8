#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/window.h"

/// Where results go: the report, the report variables, message boxes and the exit code.
struct Output {
  bool MessagesEnabled =
      false;  // nothing sets it: messages passed to ShowMessage are dropped, so that none blocks a batch run
  std::int16_t ReportFileNumber = 0;       // 1 while a report is open
  std::string ReportFileName;              // file to which report variables are appended; "-" is standard output
  std::int16_t ExitCode = 0;               // what the process ends with, unless
  std::optional<std::int32_t> asked_code;  // this is given: of the kind that /EXIT asks for
  std::int64_t report_handle = -1;         // the open report; -1 while it goes to standard output
  bool InDevelopmentEnvironment = false;   // true ends the process without an exit code
  bool report_held = false;                // lines wait in held_lines and held_errors
  std::string held_lines;                  // of the report
  std::string held_errors;                 // of standard error
  bool report_failure_told = false;
  void (*before_exit)() = nullptr;  // what a command that ends the program has still to tell
};

inline Output output;

/// Opens the report: a new file, or standard output for "-". Gives an empty text, or one line that says what failed.
std::string open_report(const std::string& file);

/// Closes the report file; PrintReport writes nothing afterwards.
void close_report();

/// Writes `text` and a line end to the report, in command-line mode while one is open. A failure stops nothing; the
/// first one is told on standard error.
void PrintReport(std::string_view text);

/// Between the two PrintReport and tell_on_stderr keep their lines: while a disk holds data that are not its own,
/// nothing may wait for a console that somebody has halted.
void hold_report();
void release_report();

/// Writes `text` to the report and appends it to Text1.
void report_and_show(std::string_view text);

/// The same for one line, which has its end in Text1 too.
void report_line(const std::string& line);

/// Appends `text`, lines separated by CR LF, and a line end to the variables file, in command-line mode. False when the
/// file cannot be opened or written.
bool AppendReportVars(std::string_view text);

/// Passes a warning or error to the report (command-line mode) or a box, while MessagesEnabled is true.
void ShowMessage(const std::string& text);

/// Writes `line` and a line end to standard error.
void tell_on_stderr(std::string_view line);

/// The same, and into Text1.
void tell_and_show(const std::string& line);

/// Writes `lines`, each with its end, to standard error, held or not.
void tell_at_once(std::string_view lines);

/// Tells the user something that the run is about: a box, or a line on standard error in a batch.
void tell_user(const std::string& text, platform::BoxIcon icon = platform::BoxIcon::none);

/// Asks OK or Cancel in a box. A batch opens none: the question goes to standard error and counts as cancelled.
bool ask_user(const std::string& text, const std::string& title);

/// Asks for a line of text in the same way; empty for Cancel.
std::string ask_line(const std::string& prompt, const std::string& title, const std::string& default_answer);

/// Adds `count` to the exit code as a signed 16-bit number; a sum out of range leaves the code as it is.
void add_to_exit_code(std::int64_t count);

/// What a run of /OP ends with that could not write one of its results, whatever else it found.
inline constexpr std::int32_t kResultsLost = 100'010;

/// What the process ends with.
std::int32_t exit_code();

/// Appends `lines` to the file `name`, made where there is none; all of them or none. Gives 0, or the system's code.
std::uint32_t append_to_file(const std::string& name, std::string_view lines);

/// Ends the process with the exit code, widened with its sign to 32 bits; what output.before_exit names comes first.
/// Never returns.
[[noreturn]] void ExitProgram();

/// Shows the usage text in a box.
void MyUsage();
