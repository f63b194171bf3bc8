#include "app/program.h"

#include <array>
#include <cstdint>
#include <string>

#include "app/command.h"
#include "app/command_line.h"
#include "app/controls.h"
#include "app/drive_list.h"
#include "app/handlers.h"
#include "app/startup.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/run.h"
#include "ops/random.h"
#include "ops/search.h"
#include "ops/sequential.h"
#include "ops/show.h"
#include "platform/console.h"
#include "platform/window.h"
#include "results/file_names.h"
#include "virtualdisk/virtualdisk.h"

namespace {

constexpr int kRefused = 1;

int refuse(const std::string& line) {
  tell_on_stderr(line);
  return kRefused;
}

/// Gives an empty text, or what is wrong with the first disk that cannot be attached.
std::string attach_virtual_disks() {
  for (int drive = 0; drive < kDriveCount; ++drive) {
    const std::string& file = run.virtual_disks.at(static_cast<std::size_t>(drive));
    std::string error = file.empty() ? std::string() : virtualdisk::attach(drive, file);
    if (!error.empty()) return error;
  }
  return {};
}

/// Looks at the names of all output files, opens the report and names the variables file; both are standard output for
/// a run with /OP unless it says otherwise.
std::string open_outputs() {
  std::string problem = check_output_names();
  if (!problem.empty()) return problem;
  output.ReportFileName = run.vars.value_or(run.op ? "-" : "");
  const std::string report = run.report.value_or(run.op ? "-" : "");
  return report.empty() ? std::string() : open_report(report);
}

/// The command of each operation that /OP names, in the order of Operation.
constexpr std::array<void (*)(), 7> kCommands = {read_command, write_command, random_read_command, random_write_command,
                                                 find_command, show_command,  smart_command};

/// True when the user stopped the run before it began: by Control-C, Cancel or another drive's button.
bool stopped_at_start() {
  if (form1.SelectedDrive != run.drive) output.ExitCode = kCancelled;
  return output.ExitCode == kCancelled;
}

/// Runs the command that /OP names and ends the process, unless the Cancel button took the run out of command-line
/// mode: then the window stays for interactive use.
void run_operation(bool has_window) {
  // The range is the command line's, whatever was clicked while the window came up.
  form1.RangeEdited = false;
  if (!stopped_at_start()) run_command(kCommands.at(static_cast<std::size_t>(*run.op)));
  if (form1.CommandLineMode || !has_window) ExitProgram();
  run.op.reset();
  close_report();
}

}  // namespace

int run_program() {
  const std::string mistake = parse_command_line(platform::command_line(), &run);
  if (!mistake.empty()) return refuse(mistake);
  if (run.usage) return platform::write_out(switch_help()) == 0 ? 0 : kRefused;
  std::string error = attach_virtual_disks();
  if (error.empty() && run.list) return list_drives();
  // Before there is a report: from here on Control-C ends a run with one that is whole.
  platform::watch_console(console_cancel, CmdExit_Click);
  if (error.empty()) error = open_outputs();
  if (!error.empty()) return refuse(error);
  if (!run.op) platform::release_lone_console();
  const bool has_window = platform::open_window(main_window());
  if (run.slow) set_slow_rate(*run.slow);
  // Nothing that is pressed before a run comes before it.
  if (run.op) platform::begin_command();
  Form_Load();
  if (run.pattern) form1.TxtPattern.set_text(*run.pattern);
  if (run.op) {
    platform::end_command();
    run_operation(has_window);
  }
  if (!has_window) return refuse("No window can be made here; /OP runs a command without one, /? lists all switches.");
  platform::run_window();
  return output.ExitCode;
}
