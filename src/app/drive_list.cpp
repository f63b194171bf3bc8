#include "app/drive_list.h"

#include <string>

#include "disk/drive.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "platform/console.h"
#include "smart/identification.h"

int list_drives() {
  bool any = false;
  for (int drive = 0; drive < kDriveCount; ++drive) {
    OpenDrive(drive);
    if (!Check_drv(drive)) continue;
    any = true;
    const Identification& id = identification;
    platform::write_out(std::to_string(drive) + "\t" + id.Disk_Model + "\t" + id.Disk_Serial + "\t" + id.Disk_Firmware +
                        "\t" + std::to_string(id.Drive_Sectors) + "\t" +
                        std::to_string(id.Drive_Sectors / kSectorsPerMb) + "Mb\r\n");
  }
  CloseDrive();
  if (!any) platform::write_err("No drive answers.\r\n");
  return any ? 0 : 1;
}
