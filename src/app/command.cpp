#include "app/command.h"

#include "app/startup.h"
#include "form/form1.h"
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
  finish(form1.MyCancel);
  finish_results();
  // Deals with what was pressed meanwhile as during the command, then gives the buttons back.
  platform::end_command();
  form1.CommandRunning = false;
  if (form1.PendingDrive == kNoDrive) return;
  form1.PendingDrive = kNoDrive;
  select_drive_keeping_text();
}
