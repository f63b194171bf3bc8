#include "app/commands.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "app/program.h"
#include "buffer/display.h"
#include "buffer/edit.h"
#include "disk/drive.h"
#include "disk/volume.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "measure/findings.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/pinpoint.h"
#include "ops/range_end.h"
#include "ops/restore.h"
#include "ops/selection.h"
#include "ops/visit.h"
#include "ops/write_guard.h"
#include "places/owners.h"
#include "platform/window.h"
#include "results/health_report.h"
#include "results/results.h"
#include "results/run_report.h"
#include "results/sector_report.h"
#include "results/verify_report.h"

namespace {

bool fill() {
  return (in_batch() || range_is_plain()) && fill_buffer();
}

/// Edits that Text1 holds are from now on compared with the pattern, so they come into view.
void fill_buffer_alone() {
  form1.report_in_front = true;
  fill_buffer();
}

bool take_edited_buffer() {
  return disk.Sec_Buf.allocated() && range_is_plain() && take_edits(named_range);
}

/// Asks at once, and not where the other commands that write do: docs/oddities.md, 13.
bool confirm_destructive_test() {
  if (!confirm_write("WRITE TO DRIVE?", Overwritten::anywhere)) return false;
  form1.Text1.set_text({});
  return true;
}

std::string wipe_title() {
  return "WIPE DRIVE?";
}

constexpr std::int64_t kMostVisitSectors = 2'097'152;
constexpr const char* kAboveMostVisit = "/COUNT of a random test is at most 2097152, which is 1 GiB.";

constexpr std::array kCommands = {
    Command{.name = "READ",
            .has_switch = true,
            .has_range = true,
            .trace = "READTOEND",
            .finds_bad_places = true,
            .plan = plan_read,
            .transfer = Seq_Read,
            .report = report_read},
    Command{.name = "WRITE",
            .has_switch = true,
            .needs_serial = true,
            .has_range = true,
            .prepare = fill,
            .trace = "WRITETOEND",
            .question = wipe_title,
            .writes = true,
            .from_buffer = true,
            .plan = plan_write,
            .transfer = Seq_Write,
            .report = report_write,
            .read_back = verify_written},
    Command{.name = "VERIFY",
            .has_switch = true,
            .has_range = true,
            .trace = "VERIFYTOEND",
            .plan = plan_verify,
            .transfer = verify_range,
            .report = report_verify},
    Command{.name = "RANDOMREAD",
            .has_switch = true,
            .most_count = kMostVisitSectors,
            .above_most = kAboveMostVisit,
            .trace = "RANDOMREAD",
            .plan = plan_random_read,
            .transfer = Random_Read_Test,
            .report = report_random_read},
    Command{.name = "RANDOMWRITE",
            .has_switch = true,
            .most_count = kMostVisitSectors,
            .above_most = kAboveMostVisit,
            .trace = "RANDOMWRITE",
            .writes = true,
            .plan = plan_random_write,
            .transfer = Random_Write_Test,
            .report = report_random_write},
    Command{.name = "RESTORE",
            .has_switch = true,
            .needs_serial = true,
            .trace = "RESTORE",
            .writes = true,
            .plan = plan_restore,
            .transfer = restore_contents,
            .report = report_restore},
    Command{.name = "SEARCH",
            .has_switch = true,
            .takes_find = true,
            .has_range = true,
            .prepare = ask_search_string,
            .trace = "READTOEND",
            .finds_bad_places = true,
            .plan = plan_search,
            .timed = false,
            .transfer = search_range,
            .report = report_search},
    Command{.name = "SHOW",
            .has_switch = true,
            .has_range = true,
            .most_count = kShownSectors,
            .above_most = "/OP:SHOW shows at most 20 sectors.",
            .plan = plan_show,
            .transfer = Seq_Read,
            .report = report_show},
    Command{.name = "SMART", .has_switch = true, .alone = list_smart, .unmeasured_name = "smart"},
    Command{.name = "WRITE BUFFER",
            .has_range = true,
            .prepare = take_edited_buffer,
            .trace = "WRITEBUFFTOEND",
            .question = write_buffer_title,
            .confirm = confirm_source,
            .writes = true,
            .from_buffer = true,
            .plan = plan_write,
            .transfer = Seq_Write,
            .report = report_write},
    Command{.name = "DESTRUCTIVE TEST",
            .prepare = confirm_destructive_test,
            .trace = "DESTRUCTIVE RANDOMWRITE",
            .writes = true,
            .plan = plan_destructive_write,
            .transfer = Destructive_Random_Write_Test,
            .report = report_destructive_write},
    Command{.name = "OFF-TRACK TEST",
            .trace = "OFFTRACK WRITE TEST",
            .writes = true,
            .plan = plan_off_track,
            .transfer = OffTrack_Write_Test,
            .report = report_off_track},
    Command{.name = "SHOW BUFFER", .alone = show_buffer_for_editing},
    Command{.name = "FILL BUFFER", .alone = fill_buffer_alone},
};

/// The part of an operation that is counted and measured.
void run_operation(const Command& command) {
  Clear_Counters();
  const std::optional<RunPlan> plan = command.plan();
  if (!plan) return;
  begin_measuring(*plan);
  if (command.timed) start_timing();
  command.transfer(*plan);
  if (!command.from_buffer) note_source();
  if (command.timed) end_timing();
  command.report();
}

bool may_begin(const Command& command) {
  if (command.prepare != nullptr && !command.prepare()) return false;
  if (command.writes && command.has_range && !confirm_range()) return false;
  if (command.trace != nullptr) ShowMessage(std::string("Started HDD - ") + command.trace);
  const bool offers_read_back = command.read_back != nullptr;
  if (command.question != nullptr && !confirm_write(command.question(), Overwritten::range, offers_read_back)) {
    return false;
  }
  return command.confirm == nullptr || command.confirm();
}

/// The volumes are locked, and dismounted with the drive, as long as a command may write.
void run_writing(const Command& command) {
  if (!still_the_drive() || !hold_drive()) {
    Clear_Counters();  // End_Operation prints the rates
    return;
  }
  Lock_Unlock_All_Volumes(form1.SelectedDrive, "LOCK");
  MY_DISMOUNT_VOLUME(disk.hDrive);
  run_operation(command);
  Lock_Unlock_All_Volumes(form1.SelectedDrive, "UNLOCK");
}

/// Both read a disk that failed, so both happen only when the user asks.
void pinpoint_and_name_owners() {
  pinpoint();
  name_owners(form1.SelectedDrive, &run_findings.bad);
}

void find_bad_places() {
  list_bad_transfers();
  if (wants_pinpoint()) pinpoint_and_name_owners();
  tell_bad_places();
}

void run_in_frame(const Command& command) {
  if (!may_begin(command)) return;
  // The range that the fields show now is written to, also where the frame selects the drive again.
  const bool edited = form1.RangeEdited;
  const bool keeps_range = command.writes && command.has_range && !in_batch();
  if (keeps_range) form1.RangeEdited = true;
  form1.Text1.set_text({});
  Start_Operation();
  if (keeps_range) form1.RangeEdited = edited;
  begin_progress_line();
  if (command.writes) {
    run_writing(command);
  } else {
    run_operation(command);
  }
  end_progress_line();
  End_Operation();
  report_visits();
  if (command.read_back != nullptr && measured_something()) command.read_back(measure.plan);
  tell_sector_sizes(command.writes);
  tell_health(command.writes);
  tell_verify();
  end_measuring(form1.MyCancel);
  tell_run_end();
  if (command.finds_bad_places && measured_something()) find_bad_places();
}

void lock_buttons() {
  form1.command_running = true;
  platform::begin_command();
}

/// Handles what was pressed meanwhile as during the command, then enables the buttons again. A drive that was pressed
/// is selected now.
void unlock_buttons() {
  const std::int16_t exit_code = output.ExitCode;
  const bool command_line_mode = form1.CommandLineMode;
  platform::end_command();
  if (in_batch()) {
    // The results are complete: a later press changes nothing that a batch file sees.
    output.ExitCode = exit_code;
    set_command_line_mode(command_line_mode);
  }
  form1.command_running = false;
  if (form1.pending_drive == kNoDrive) return;
  form1.pending_drive = kNoDrive;
  select_drive_keeping_text();
}

}  // namespace

std::span<const Command> commands() {
  return kCommands;
}

const Command* command_named(std::string_view name) {
  const auto* const row =
      std::find_if(kCommands.begin(), kCommands.end(), [&](const Command& command) { return command.name == name; });
  return row == kCommands.end() ? nullptr : row;
}

void run_command(std::string_view name) {
  if (form1.command_running) return;
  if (form1.selecting_drive) {
    if (!in_batch()) form1.pending_command = name;
    return;
  }
  const Command& command = *command_named(name);
  lock_buttons();
  begin_results(program_version(), command.unmeasured_name);
  verify_run = {};
  if (command.alone != nullptr) {
    command.alone();
  } else {
    run_in_frame(command);
    release_drive();
  }
  end_measuring(form1.MyCancel);
  finish_results();
  unlock_buttons();
}

void run_pending_command() {
  if (form1.selecting_drive || form1.command_running) return;
  const std::string command = std::exchange(form1.pending_command, {});
  if (!command.empty()) run_command(command);
}

std::string why_no_exact_search() {
  if (!results.last) return "Run READ or SEARCH first.";
  if (bad_transfers().empty() || run_findings.bad.empty()) {
    return "No transfer of the last READ or SEARCH failed or stalled.";
  }
  if (run_findings.pinpoint.made && run_findings.pinpoint.stopped.empty()) {
    return "The bad sectors of the last command are exact already.";
  }
  const bool same_drive =
      results.last->drive == form1.SelectedDrive && results.last->disk.Disk_Serial == identification.Disk_Serial;
  return same_drive ? std::string() : "The last command ran on another drive.";
}

void find_exact_sectors() {
  if (form1.command_running || !why_no_exact_search().empty()) return;
  lock_buttons();
  // Cancel ends this search; the run that it belongs to has ended before.
  const CommandEnd run_end = command_end;
  const std::int16_t exit_code = output.ExitCode;
  form1.MyCancel = false;
  pinpoint_and_name_owners();
  tell_bad_places();
  command_end = run_end;
  output.ExitCode = exit_code;
  add_to_last_results();
  unlock_buttons();
}
