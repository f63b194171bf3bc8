#include "ops/show.h"

#include <string>

#include "buffer/display.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/run.h"
#include "ops/frame.h"
#include "ops/sequential.h"
#include "smart/snapshot.h"

void show_command() {
  form1.Text1.set_text({});
  Start_Operation();
  if (run.count == 0) form1.TxtNoSecs.set_text("1");
  Seq_Read();
  if (form1.Exit_Requested) return;
  show_in_report(Display_Sec_Buf);
  End_Operation();
}

void smart_command() {
  form1.Text1.set_text({});
  if (!open_for_operation()) return;
  form1.MyCancel = false;  // left by the drive's selection
  Get_Smart_Data(form1.SelectedDrive);
  const std::string listing =
      smart.Smart_List.empty() ? "Warning: No SMART data available\r\n" : "SMART DATA\r\n" + smart.Smart_List;
  PrintReport(listing);
  form1.Text1.append(listing);
  close_drive();
}
