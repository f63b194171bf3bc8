#include "app/program.h"

#include <cstdint>
#include <string>

#include "app/command_line.h"
#include "app/commands.h"
#include "app/controls.h"
#include "app/handlers.h"
#include "device/drive_words.h"
#include "disk/progress.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "ops/restore.h"
#include "platform/console.h"
#include "platform/window.h"
#include "results/map_writer.h"
#include "results/output_file.h"
#include "results/results.h"
#include "virtualdisk/virtualdisk.h"

namespace {

constexpr int kRefused = 1;

int refuse(const std::string& line) {
  tell_on_stderr(line);
  return kRefused;
}

/// A mistake opens no disk. A batch file is told of it all the same.
int refuse_mistake(const std::string& line) {
  tell_on_stderr(line);
  if (!asked.has_op) return kRefused;
  asked.mode = Mode::batch;
  form1.CommandLineMode = true;
  form1.SelectedDrive = asked.named_drives.empty() ? kNoDrive : asked.named_drives.front();
  output.ExitCode = kRefused;
  output.ReportFileName = asked.vars.value_or("-");
  tell_unstarted(program_version(), Outcome::mistake, line);
  return exit_code();
}

/// Gives an empty text, or what is wrong with the first disk that cannot be attached.
std::string attach_virtual_disks() {
  for (int drive = 0; drive < kDriveCount; ++drive) {
    const std::string& file = asked.virtual_disks.at(static_cast<std::size_t>(drive));
    std::string error = file.empty() ? std::string() : virtualdisk::attach(drive, file);
    if (!error.empty()) return error;
  }
  return {};
}

/// Looks at the names of all output files, takes the map of a run that is resumed, opens the report and names the
/// variables file; both are standard output for a batch unless it says otherwise.
std::string open_outputs() {
  std::string problem = check_output_names();
  if (problem.empty()) problem = load_resumed_map();
  if (!problem.empty()) return problem;
  output.ReportFileName = asked.vars.value_or(in_batch() ? "-" : "");
  const std::string report = asked.report.value_or(in_batch() ? "-" : "");
  return report.empty() ? std::string() : open_report(report);
}

/// True when the user stopped the run before it began: by Control-C, Cancel or another drive's button.
bool stopped_at_start() {
  if (form1.SelectedDrive != asked.named_drives.front()) output.ExitCode = kCancelled;
  return output.ExitCode == kCancelled;
}

/// What earlier tests left: their journals, looked at before anything is selected. RESTORE looks for itself.
LeftOver look_for_left_over() {
  LeftOver left;
  if (asked.op != "RESTORE") left = look_for_journals();
  if (!in_batch()) return left;
  for (const std::string& line : left.lines) tell_on_stderr(line);
  for (const Restorable& place : left.restorable) {
    tell_on_stderr("/D:" + std::to_string(place.drive) + " /OP:RESTORE /SERIAL:" + place.serial +
                   " gives the former contents back.");
  }
  return left;
}

/// Runs the command that /OP names and ends the process, unless the Cancel button took the run out of command-line
/// mode: then the window stays for interactive use.
void run_batch(bool has_window) {
  // The range is the command line's, whatever was clicked while the window came up.
  form1.RangeEdited = false;
  if (stopped_at_start()) {
    tell_unstarted(program_version(), Outcome::cancelled, "It was stopped before it began.");
  } else {
    run_command(asked.op);
  }
  if (form1.CommandLineMode || !has_window) ExitProgram();
  asked.mode = Mode::window;
  close_report();
}

/// Finds out what the next drive is, for its button's tool tip. Returns false if all are known.
bool learn_drive() {
  const int drive = form1.drives_learned++;
  const auto button = static_cast<std::size_t>(drive);
  const std::string words = drive_words(drive);
  std::string tip = main_window().controls[button].tool_tip;
  if (!tip.empty()) tip += "\r\n";
  if (!words.empty()) form1.drive_tips.at(button).set_text(tip + "Drive " + std::to_string(drive) + ": " + words);
  return form1.drives_learned < kDriveCount;
}

}  // namespace

int run_program() {
  const std::string mistake = parse_command_line(platform::command_line(), &asked);
  if (!mistake.empty()) return refuse_mistake(mistake);
  if (asked.mode == Mode::usage) return platform::write_out(switch_help()) == 0 ? 0 : kRefused;
  if (asked.mode == Mode::version) return platform::write_out(version_line() + "\r\n") == 0 ? 0 : kRefused;
  std::string error = attach_virtual_disks();
  if (error.empty() && asked.mode == Mode::list) return list_drives();
  // Before there is a report: from here on Control-C ends a run with one that is whole.
  platform::watch_console(console_cancel, CmdExit_Click);
  if (error.empty()) error = open_outputs();
  if (!error.empty()) return refuse_mistake(error);
  if (!in_batch()) platform::release_lone_console();
  form1.Caption.set_text(version_line());
  const bool has_window = platform::open_window(main_window());
  if (asked.slow) set_slow_rate(*asked.slow);
  const LeftOver left = look_for_left_over();
  // Nothing that is pressed before a run comes before it.
  if (in_batch()) platform::begin_command();
  Form_Load();
  if (asked.pattern) form1.TxtPattern.set_text(*asked.pattern);
  if (in_batch()) {
    platform::end_command();
    run_batch(has_window);
  }
  if (!has_window) return refuse("No window can be made here; /OP runs a command without one, /? lists all switches.");
  offer_left_over(left);
  run_pending_command();
  platform::run_window(learn_drive);
  return output.ExitCode;
}
