#include "ops/frame.h"

#include <string>
#include <string_view>

#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/progress.h"
#include "eventlog/event_log.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/outcome.h"
#include "form/output.h"
#include "ops/drive_health.h"
#include "ops/range_end.h"
#include "ops/resume.h"
#include "ops/selection.h"
#include "ops/temperature.h"
#include "ops/write_guard.h"
#include "platform/clock.h"
#include "platform/window.h"
#include "smart/compare.h"
#include "smart/identification.h"
#include "smart/snapshot.h"

namespace {

/// Ends a run with /OP that may not work on its drive, or not there.
void refuse_run(const std::string& why) {
  tell_on_stderr(why);
  end_before_transfers(Outcome::refused, why);
  output.ExitCode = 1;
  close_drive();
  ExitProgram();
}

/// Nothing has gone to the drive but identification when this decides.
void check_drive_of_run() {
  if (!in_batch()) return;
  if (asked.serial && !serial_is_its_own()) {
    refuse_run("The serial number of drive " + std::to_string(form1.SelectedDrive) +
               " was told by the SCSI port of that number, which may be another drive's: nothing was done.");
  }
  if (asked.serial && identification.Disk_Serial != *asked.serial) {
    refuse_run("Drive " + std::to_string(form1.SelectedDrive) + " has the serial number \"" +
               identification.Disk_Serial + "\", not \"" + *asked.serial + "\": nothing was done.");
  }
  if (const std::string beyond = asked_range_beyond_end(); !beyond.empty()) {
    refuse_run(beyond + " Nothing was done.");
  }
  if (const std::string other = why_no_resume(); !other.empty()) refuse_run(other + " Nothing was read.");
  if (!asked.writes) return;
  const std::string reason = why_not_written();
  if (!reason.empty()) refuse_run(reason);
}

void refuse_missing_drive() {
  const std::string text = disk.access_denied ? access_denied_text(form1.SelectedDrive)
                                              : "Drive " + std::to_string(form1.SelectedDrive) + " does not exist!";
  end_before_transfers(disk.access_denied ? Outcome::refused : Outcome::missing, text);
  PrintReport(text);
  if (in_batch()) tell_on_stderr(text);
  form1.TxtStatus.set_text(text);
  output.ExitCode = 1;
  if (!asked.ends_without_drive) return;
  close_drive();
  ExitProgram();
}

}  // namespace

bool open_for_operation() {
  output.ExitCode = 0;
  GetandOpenDrive();
  const bool found = Check_drv(form1.SelectedDrive);
  if (found) {
    resolve_percentages();
    check_drive_of_run();
  } else {
    refuse_missing_drive();
  }
  return found;
}

void show_in_report(void (*show)()) {
  const std::size_t before = form1.Text1.text().size();
  show();
  PrintReport(std::string_view(form1.Text1.text()).substr(before));
}

void Start_Operation() {
  frame = {.Smart_Text = "SMART DATA BEFORE OPERATION\r\n",
           .before = {},
           .Op_Start_Date = platform::local_time(),
           .start_utc = platform::utc_time()};
  drive_health = {};
  if (!open_for_operation()) {
    form1.MyCancel = false;  // so that the transfers are tried, fail and are counted
    return;
  }
  // The status goes into Text1 after it was cleared: docs/oddities.md, 12.
  if (form1.CommandLineMode) SelectDrive();
  form1.MyCancel = false;
  frame.before = Get_Smart_Data(form1.SelectedDrive);
  // No line end: docs/oddities.md, 6.
  frame.Smart_Text += smart.Smart_List + "\r\n\r\nSMART DATA AFTER OPERATION";
  if (in_batch()) show_range_of_command_line();
  begin_drive_health();
  begin_temperature_watch();
  frame.Op_Start_Date = platform::local_time();
  frame.start_utc = platform::utc_time();
}

void End_Operation() {
  end_temperature_watch();
  Get_Smart_Data(form1.SelectedDrive);
  frame.Smart_Text += smart.Smart_List;
  Compare_smart_info(frame.before);
  Query_System_Event_Log(frame.Op_Start_Date);
  PrintReport("Last Status: " + form1.TxtStatus.text());
  PrintReport(frame.Smart_Text + "\r\n\r\n");
  form1.Text1.append("\r\n" + frame.Smart_Text);
  close_drive();
  // Its requests are no part of the run, so they follow the span that the event log is queried for.
  end_drive_health();
}

void Clear_Counters() {
  counters = {};
  begin_early_end(asked.stop_after, identification.Drive_Sectors);
  clear_progress();
}

void start_timing() {
  platform::show_now();
  counters.OpStartTime = platform::seconds_since_midnight();
}

void end_timing() {
  counters.OpEndTime = platform::seconds_since_midnight();
  platform::pump_events();
}

void tell_totals() {
  const std::string total = std::to_string(counters.TotalErrors);
  const std::string reads = std::to_string(counters.TotalRErrors);
  const std::string writes = std::to_string(counters.TotalWErrors);
  const std::string compares = std::to_string(counters.TotalCErrors);
  PrintReport("\r\nTotal Errors = " + total + "\r\nTotal Read errors = " + reads +
              "\r\nTotal Write errors = " + writes + "\r\nTotal Compare errors = " + compares + "\r\n");
  const std::string variables = "\r\nSET QV_D_TOTERR=" + total + "\r\nSET QV_D_READERR=" + reads +
                                "\r\nSET QV_D_WRITEERR=" + writes + "\r\nSET QV_D_CMPERR=" + compares + "\r\n";
  AppendReportVars(variables);
  form1.Text1.append(variables);
}

void Do_errors() {
  tell_totals();
  add_to_exit_code(counters.TotalErrors);
}

std::string time_taken() {
  return "Time taken= " + single_text(elapsed_seconds()) + " seconds for " + std::to_string(counters.No_Secs) +
         " sectors.\r\n";
}

void report_end(const std::string& line) {
  report_and_show(line);
  Do_errors();
  form1.Text1.append("\r\nFinished!\r\n");
}
