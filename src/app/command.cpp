#include "app/command.h"

#include "form/form1.h"
#include "ops/select_drive.h"
#include "platform/window.h"

void run_command(void (*command)()) {
  if (form1.CommandRunning) return;
  form1.CommandRunning = true;
  platform::begin_command();
  command();
  form1.CommandRunning = false;
  if (form1.PendingDrive != kNoDrive) {
    form1.PendingDrive = kNoDrive;
    select_drive_keeping_text();
  }
  platform::end_command();
}
