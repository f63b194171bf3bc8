#include "app/handlers.h"

#include "app/command_line.h"
#include "app/commands.h"
#include "app/program.h"
#include "device/kernel32.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "ops/selection.h"
#include "ops/visit.h"
#include "platform/window.h"
#include "results/results.h"

namespace {

constexpr std::uint32_t kLeaveAfter = 1000;  // milliseconds
constexpr std::int16_t kLeft = 1;

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
  const bool during_command = form1.command_running;
  form1.command_running = true;
  platform::pump_events();
  form1.command_running = during_command;
  if (!during_command) {
    form1.pending_drive = kNoDrive;
    SelectDrive();
  } else if (in_batch()) {
    command_end.cancelled = true;
    output.ExitCode = kCancelled;  // a run is of one drive: it ends here
  } else {
    form1.pending_drive = drive;
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
  run_command("READ");
}

void CmdWrite_Click() {
  run_command("WRITE");
}

void cmdWriteBuffer_Click() {
  run_command("WRITE BUFFER");
}

void CmdDisplay_Click() {
  run_command("SHOW BUFFER");
}

void CmdFillBuffer_Click() {
  run_command("FILL BUFFER");
}

void CmdFind_Click() {
  run_command("SEARCH");
}

void CmdRnd_Click() {
  run_command("RANDOMWRITE");
}

void CmdRndRD_Click() {
  run_command("RANDOMREAD");
}

void Cmd_Destructive_Random_Write() {
  run_command("DESTRUCTIVE TEST");
}

void Cmd_OffTrack_Write() {
  run_command("OFF-TRACK TEST");
}

void CmdSlowRate_Click() {
  ask_slow_rate();
}

void CmdHelp_Click() {
  MyUsage("\r\n\r\n" + switch_names() + "\r\n" + exit_code_help() + "\r\n" + example_help());
}

void cmdCancel_Click() {
  form1.MyCancel = true;
  command_end.cancelled = true;
  set_command_line_mode(false);
  form1.Text1.caret_to_end();
  output.ExitCode = kCancelled;
}

void CmdExit_Click() {
  output.ExitCode = kLeft;
  end_journal();
  leave_results();
  kernel32::Sleep(kLeaveAfter);
  ExitProgram();
}

void window_closed() {
  output.ExitCode = kLeft;
  close_drive();
  end_journal();
  close_report();
  leave_results();
  kernel32::Sleep(kLeaveAfter);
  ExitProgram();
}

void console_cancel() {
  form1.MyCancel = true;
  command_end.cancelled = true;
  output.ExitCode = kCancelled;
}
