#include <cstdint>
#include <string>

#include "app/program.h"
#include "device/drive_words.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "health/verdict.h"
#include "ops/drive_health.h"
#include "ops/frame.h"
#include "platform/console.h"
#include "results/health_report.h"
#include "results/sector_report.h"
#include "smart/identification.h"
#include "smart/snapshot.h"

namespace {

/// Logical and physical sector, where they have other sizes than the sectors that the list counts.
std::string sizes_column() {
  const SectorSizes& sizes = disk.sizes;
  if (sizes.physical == SectorSize) return {};
  return "\tsectors " + std::to_string(sizes.logical) + "/" + std::to_string(sizes.physical) + " bytes";
}

/// What is told of a drive that the system refused to open: there the model and the rest may be empty.
std::string denied_row(int drive) {
  const ToldDrive told = told_without_rights(drive).value_or(ToldDrive{});
  return std::to_string(drive) + "\t" + told.model + "\t" + told.serial + "\t" + told.firmware + "\t" +
         std::to_string(told.sectors) + "\t" + std::to_string(told.sectors / kSectorsPerMb) + "Mb\t" +
         bus_name(told.bus) + "\taccess denied\r\n";
}

}  // namespace

int list_drives() {
  constexpr int kFailed = 1;
  std::string list;
  bool denied = false;
  for (int drive = 0; drive < kDriveCount; ++drive) {
    OpenDrive(drive);
    if (!Check_drv(drive)) {
      denied = denied || disk.access_denied;
      if (disk.access_denied) list += denied_row(drive);
      continue;
    }
    const Identification& id = identification;
    list += std::to_string(drive) + "\t" + id.Disk_Model + "\t" + id.Disk_Serial + "\t" + id.Disk_Firmware + "\t" +
            std::to_string(id.Drive_Sectors) + "\t" + std::to_string(id.Drive_Sectors / kSectorsPerMb) + "Mb\t" +
            bus_name(id.bus) + (serial_is_its_own() ? "" : "\tidentity of SCSI port " + std::to_string(drive)) +
            sizes_column() + "\r\n";
  }
  close_drive();
  if (denied) {
    tell_on_stderr(
        "Access is denied to some drives: to test them, and to learn more of them, start Sectorix as administrator, or "
        "from an elevated prompt.");
  }
  if (list.empty()) {
    tell_on_stderr("No drive answers.");
    return kFailed;
  }
  const std::uint32_t code = platform::write_out(list);
  if (code == 0) return 0;
  tell_on_stderr("The list cannot be written: error " + std::to_string(code) + ".");
  return kFailed;
}

void list_smart() {
  form1.Text1.set_text({});
  drive_health = {};
  if (!open_for_operation()) return;
  form1.MyCancel = false;  // left by the drive's selection
  Get_Smart_Data(form1.SelectedDrive);
  begin_drive_health();
  const std::string listing =
      smart.Smart_List.empty() ? "Warning: No SMART data available\r\n" : "SMART DATA\r\n" + smart.Smart_List;
  report_and_show(listing);
  drive_health = {.before = std::nullopt, .after = drive_health.before};
  run_findings.verdict = judge(*drive_health.after, *drive_health.after, {});
  run_findings.judged = true;
  close_drive();
  tell_sector_sizes(false);
  tell_health(false);
}
