#include "ops/range_end.h"

#include <algorithm>

#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "smart/identification.h"

namespace {

/// Empty for a range that lies on the disk.
std::string beyond_end(std::int64_t lba, std::int64_t sectors) {
  const std::int64_t size = identification.Drive_Sectors;
  if (lba_after(lba, sectors) <= size) return {};
  return "LBA " + std::to_string(lba) + " to " + std::to_string(lba_after(lba, sectors - 1)) +
         " reach beyond the disk's end: drive " + std::to_string(form1.SelectedDrive) + " has " + std::to_string(size) +
         " sectors, LBA 0 to " + std::to_string(size - 1) + ".";
}

}  // namespace

std::string asked_range_beyond_end() {
  // A start alone means the rest of the disk, of which there is a sector at least.
  return asked.has_range ? beyond_end(asked.start_lba, std::max<std::int64_t>(asked.count, 1)) : std::string();
}

bool confirm_range() {
  if (form1.CommandLineMode || identification.Drive_Sectors == 0) return true;
  const std::string problem =
      beyond_end(number_in(form1.TxtStartLBA.text()), std::max<std::int64_t>(number_in(form1.TxtNoSecs.text()), 1));
  return problem.empty() ||
         ask_user(problem + "\r\n\r\nTransfers beyond it fail. Go on all the same?", "BEYOND THE DISK'S END?");
}
