#include "ops/frame.h"

#include <string>

#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "form/run.h"
#include "ops/select_drive.h"
#include "smart/identification.h"

namespace {

void refuse_missing_drive() {
  const std::string text = "Drive " + std::to_string(form1.SelectedDrive) + " does not exist!";
  PrintReport(text);
  form1.TxtStatus.set_text(text);
  output.ExitCode = 1;
  if (run.wants_drive) ExitProgram();
}

/// Puts the range that the command line gave into the fields. A start alone means: from there to the end of the disk.
void fill_remembered_range() {
  if (run.start_lba != 0) form1.TxtStartLBA.set_text(std::to_string(run.start_lba));
  if (run.count != 0) {
    form1.TxtNoSecs.set_text(std::to_string(run.count));
  } else if (run.start_lba != 0 && form1.CommandLineMode && !form1.RangeEdited) {
    form1.TxtNoSecs.set_text(std::to_string(identification.Drive_Sectors - run.start_lba));
  }
}

}  // namespace

void Start_Operation() {
  output.ExitCode = 0;
  GetandOpenDrive();
  if (!Check_drv(form1.SelectedDrive)) {
    refuse_missing_drive();
    return;
  }
  // The selection copies the status into Text1 after it was cleared; kept, a command-line report begins with the drive.
  if (form1.CommandLineMode) SelectDrive();
  form1.MyCancel = false;
  fill_remembered_range();
  begin_progress_line();
}

void End_Operation() {
  end_progress_line();
  if (form1.Exit_Requested) return;
  if (form1.CommandLineMode) PrintReport("Last Status: " + form1.TxtStatus.text());
  CloseDrive();
}
