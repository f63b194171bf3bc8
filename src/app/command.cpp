#include "app/command.h"

#include "app/startup.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/run.h"
#include "measure/measure.h"
#include "ops/select_drive.h"
#include "platform/window.h"
#include "results/results.h"

void run_command(void (*command)()) {
  if (form1.CommandRunning) return;
  form1.CommandRunning = true;
  platform::begin_command();
  begin_results(program_version());
  command();
  end_measuring(form1.MyCancel);
  finish_results();
  const std::int16_t exit_code = output.ExitCode;
  const bool command_line_mode = form1.CommandLineMode;
  // Deals with what was pressed meanwhile as during the command, then gives the buttons back.
  platform::end_command();
  if (run.op) {
    // What was pressed after all had been told changes nothing that a batch file sees.
    output.ExitCode = exit_code;
    form1.CommandLineMode = command_line_mode;
  }
  form1.CommandRunning = false;
  if (form1.PendingDrive == kNoDrive) return;
  form1.PendingDrive = kNoDrive;
  select_drive_keeping_text();
}
