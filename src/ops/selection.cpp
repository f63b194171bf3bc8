#include "ops/selection.h"

#include <algorithm>
#include <string>

#include "disk/counters.h"
#include "disk/drive.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "smart/identification.h"

void select_drive_keeping_text() {
  identification.Drive_Sectors = 0;
  auto* const chosen = std::find_if(form1.options.begin(), form1.options.end(),
                                    [](const platform::Field& option) { return option.on(); });
  if (chosen != form1.options.end()) form1.SelectedDrive = static_cast<int>(chosen - form1.options.begin());
  GetandOpenDrive();
  const bool found = Check_drv(form1.SelectedDrive);
  const std::int64_t sectors = identification.Drive_Sectors;
  const std::string drive = "Drive " + std::to_string(form1.SelectedDrive);
  if (found) {
    if (!form1.RangeEdited) {
      form1.TxtNoSecs.set_text(std::to_string(sectors));
      form1.TxtStartLBA.set_text("0");
    }
    form1.TxtStatus.set_text(drive + "  - " + identification.Disk_Model + "  " +
                             std::to_string(sectors / kSectorsPerMb) + "Mb" + sector_sizes_text());
  } else {
    form1.TxtStatus.set_text(disk.access_denied ? access_denied_text(form1.SelectedDrive) : drive + " not found!");
  }
  form1.LblStart.set_text("Start (0-" + std::to_string(sectors - 1) + ")");
}

void SelectDrive() {
  select_drive_keeping_text();
  form1.Text1.set_text(form1.TxtStatus.text());
}

void show_option(int drive) {
  for (int i = 0; i < kDriveCount; ++i) form1.options.at(static_cast<std::size_t>(i)).set_on(i == drive);
}

std::int64_t take_range() {
  const std::int64_t start = number_in(form1.TxtStartLBA.text());
  form1.TxtStartLBA.set_text(std::to_string(start));
  counters.No_Secs = std::max<std::int64_t>(number_in(form1.TxtNoSecs.text()), 1);
  form1.TxtNoSecs.set_text(std::to_string(counters.No_Secs));
  return start;
}

void resolve_percentages() {
  const std::int64_t sectors = identification.Drive_Sectors;
  if (asked.start_share) asked.start_lba = whole_below(asked.start_share->of(sectors));
  if (asked.count_share) asked.count = std::max(whole_below(asked.count_share->of(sectors)), sectors_per_logical());
}

void show_range_of_command_line() {
  if (asked.start_lba != 0) form1.TxtStartLBA.set_text(std::to_string(asked.start_lba));
  if (asked.count != 0) {
    form1.TxtNoSecs.set_text(std::to_string(asked.count));
  } else if (asked.start_lba != 0) {
    form1.TxtNoSecs.set_text(std::to_string(std::max<std::int64_t>(identification.Drive_Sectors - asked.start_lba, 1)));
  }
}

std::int64_t read_chunk(std::int64_t sectors) {
  // Two steps, the lower one odd: docs/oddities.md, 14.
  if (sectors >= kLargeChunkSectors) return kLargeChunkSectors;
  return std::min(sectors, whole_below(kChunkSectors));
}
