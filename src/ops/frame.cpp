#include "ops/frame.h"

#include <string>
#include <string_view>

#include "device/volume_disk.h"
#include "disk/drive.h"
#include "disk/volume.h"
#include "eventlog/event_log.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "form/run.h"
#include "ops/frame_data.h"
#include "ops/range.h"
#include "ops/select_drive.h"
#include "ops/visit.h"
#include "platform/clock.h"
#include "smart/compare.h"
#include "smart/identification.h"
#include "smart/snapshot.h"

Frame frame;

namespace {

/// Ends a run with /OP whose drive is not the one that it may work on.
void refuse_wrong_drive(const std::string& why) {
  tell_on_stderr(why);
  output.ExitCode = 1;
  close_drive();
  ExitProgram();
}

/// Nothing has gone to the drive but identification when this decides.
void check_drive_of_run() {
  if (!run.op) return;
  if (run.serial && identification.Disk_Serial != *run.serial) {
    refuse_wrong_drive("Drive " + std::to_string(form1.SelectedDrive) + " has the serial number \"" +
                       identification.Disk_Serial + "\", not \"" + *run.serial + "\": nothing was done.");
  }
  if (*run.op != Operation::write && *run.op != Operation::random_write) return;
  const OnDrive system = holds_windows(form1.SelectedDrive);
  if (system == OnDrive::yes) refuse_wrong_drive("Windows runs from this disk: it is not written to.");
  if (system == OnDrive::unknown) {
    refuse_wrong_drive("It cannot be learned which disk Windows runs from: no real disk is written to.");
  }
}

void refuse_missing_drive() {
  const std::string text = "Drive " + std::to_string(form1.SelectedDrive) + " does not exist!";
  PrintReport(text);
  if (run.op) tell_on_stderr(text);
  form1.TxtStatus.set_text(text);
  output.ExitCode = 1;
  if (!run.wants_drive) return;
  close_drive();
  ExitProgram();
}

}  // namespace

bool open_for_operation() {
  output.ExitCode = 0;
  GetandOpenDrive();
  const bool found = Check_drv(form1.SelectedDrive);
  if (found) {
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
  if (!open_for_operation()) {
    form1.MyCancel = false;  // so that the transfers are tried, fail and are counted
    return;
  }
  // The selection copies the status into Text1 after it was cleared; kept, a command-line report begins with the drive.
  if (form1.CommandLineMode) SelectDrive();
  form1.MyCancel = false;
  frame.before = Get_Smart_Data(form1.SelectedDrive);
  // No line end behind this heading, so the listing's first line follows on it; kept, scripts cut at this line.
  frame.Smart_Text += smart.Smart_List + "\r\n\r\nSMART DATA AFTER OPERATION";
  if (run.op) show_range_of_command_line();
  frame.Op_Start_Date = platform::local_time();
  frame.start_utc = platform::utc_time();
  begin_progress_line();
}

void End_Operation() {
  end_progress_line();
  if (form1.Exit_Requested) return;
  Get_Smart_Data(form1.SelectedDrive);
  frame.Smart_Text += smart.Smart_List;
  Compare_smart_info(frame.before);
  Query_System_Event_Log(frame.Op_Start_Date);
  PrintReport("Last Status: " + form1.TxtStatus.text());
  PrintReport(frame.Smart_Text + "\r\n\r\n");
  form1.Text1.append("\r\n" + frame.Smart_Text);
  close_drive();
  if (!lost_places.lines.empty()) form1.Text1.append("\r\n");
  report_lost_places();
}

void run_writing(void (*operation)()) {
  // The range that the fields show now is written to, also where the frame selects the drive again.
  if (!run.op) form1.RangeEdited = true;
  form1.Text1.set_text({});
  Start_Operation();
  Lock_Unlock_All_Volumes(form1.SelectedDrive, "LOCK");
  MY_DISMOUNT_VOLUME(disk.hDrive);
  operation();
  Lock_Unlock_All_Volumes(form1.SelectedDrive, "UNLOCK");
  End_Operation();
}

bool confirm_write(const std::string& title) {
  return form1.CommandLineMode || ask_user("Warning: This Disk " + std::to_string(form1.SelectedDrive) +
                                               " Write operation will overwrite all existing data!",
                                           title);
}
