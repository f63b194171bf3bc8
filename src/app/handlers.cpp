#include "app/handlers.h"

#include "app/command.h"
#include "buffer/display.h"
#include "buffer/fill.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/run.h"
#include "ops/random.h"
#include "ops/search.h"
#include "ops/select_drive.h"
#include "ops/sequential.h"
#include "platform/window.h"
#include "results/results.h"

namespace {

constexpr std::uint32_t kLeaveAfter = 1000;  // milliseconds
constexpr std::int16_t kLeft = 1;

void request_exit() {
  form1.Exit_Requested = true;
  form1.MyCancel = true;
}

}  // namespace

void TxtStartLBA_Click() {
  form1.RangeEdited = true;
}

void TxtNoSecs_Click() {
  form1.RangeEdited = true;
}

void range_typed() {
  form1.RangeEdited = true;
}

void option_click(int drive) {
  form1.MyCancel = true;
  form1.RangeEdited = false;
  show_option(drive);
  // A command pressed behind this button does not begin before the drive is selected.
  const bool during_command = form1.CommandRunning;
  form1.CommandRunning = true;
  platform::pump_events();
  form1.CommandRunning = during_command;
  if (!during_command) {
    form1.PendingDrive = kNoDrive;
    SelectDrive();
  } else if (run.op) {
    output.ExitCode = kCancelled;  // a run is of one drive: it ends here
  } else {
    form1.PendingDrive = drive;
  }
}

void Option1_Click() {
  option_click(0);
}

void Option2_Click() {
  option_click(1);
}

void Option3_Click() {
  option_click(2);
}

void Option4_Click() {
  option_click(3);
}

void Option5_Click() {
  option_click(4);
}

void Option6_Click() {
  option_click(5);
}

void Option7_Click() {
  option_click(6);
}

void Option8_Click() {
  option_click(7);
}

void CmdRead_Click() {
  run_command(read_command);
}

void CmdWrite_Click() {
  run_command(write_command);
}

void cmdWriteBuffer_Click() {
  run_command(write_buffer_command);
}

void CmdDisplay_Click() {
  run_command(show_buffer_for_editing);
}

void CmdFillBuffer_Click() {
  run_command(fill_buffer);
}

void CmdFind_Click() {
  run_command(find_command);
}

void CmdRnd_Click() {
  run_command(random_write_command);
}

void CmdRndRD_Click() {
  run_command(random_read_command);
}

void CmdSlowRate_Click() {
  ask_slow_rate();
}

void CmdHelp_Click() {
  MyUsage();
}

void cmdCancel_Click() {
  form1.MyCancel = true;
  form1.CommandLineMode = false;
  form1.Text1.caret_to_end();
  output.ExitCode = kCancelled;
}

void CmdExit_Click() {
  request_exit();
  output.ExitCode = kLeft;
  abandon_results();
  kernel32::Sleep(kLeaveAfter);
  ExitProgram();
}

void Form_Unload() {
  close_drive();
  close_report();
  abandon_results();
  request_exit();
  kernel32::Sleep(kLeaveAfter);
  output.ExitCode = kLeft;
  ExitProgram();
}

void console_cancel() {
  form1.MyCancel = true;
  output.ExitCode = kCancelled;
}
