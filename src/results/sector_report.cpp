#include "results/sector_report.h"

#include <string>

#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/transfer.h"
#include "form/output.h"
#include "measure/measure.h"
#include "results/results.h"
#include "smart/identification.h"

namespace {

constexpr const char* kLineEnd = "\r\n";

bool is_at_physical(std::int64_t lba) {
  return (lba * SectorSize + disk.sizes.offset) % disk.sizes.physical == 0;
}

/// A test at random places has no range but places, which all begin where logical sectors begin.
std::string places_line(bool writes) {
  const Stretch place{0, counters.No_Secs};
  if (widened(place) == place) return {};
  return "Each place of " + std::to_string(place.sectors) + " sectors ends inside a sector of the disk, which is " +
         (writes ? "read, changed in part and written back." : "read whole.") + kLineEnd;
}

std::string range_line(const Stretch& range, bool writes) {
  const std::int64_t end = lba_after(range.lba, range.sectors);
  std::string line = "LBA " + std::to_string(range.lba) + " to " + std::to_string(end - 1);
  if (widened(range) != range) {
    line += " does not begin and end where sectors of the disk do: ";
    line += writes ? "those at its ends were read, changed in part and written back."
                   : "those at its ends were read whole.";
  } else if (!is_at_physical(range.lba) || !is_at_physical(end)) {
    line += " is not aligned to the physical sectors";
    line += writes ? ": the drive itself reads, changes and writes back those at its ends." : ".";
  } else {
    return {};
  }
  return line + kLineEnd;
}

std::string operation_line(bool writes) {
  const RunPlan& plan = measure.plan;
  if (!measured_something()) return {};
  return is_random(plan.kind) ? places_line(writes) : range_line({plan.first_lba, plan.sectors}, writes);
}

}  // namespace

void tell_sector_sizes(bool writes) {
  const SectorSizes& sizes = disk.sizes;
  if (identification.Drive_Sectors == 0 || sizes.physical == SectorSize) return;
  std::string text = "\r\n\r\nSECTORS\r\n=======\r\nLogical sector " + std::to_string(sizes.logical) +
                     " bytes, physical sector " + std::to_string(sizes.physical) + " bytes." + kLineEnd;
  if (sizes.logical > SectorSize) {
    text += "LBAs and counts are in sectors of 512 bytes: a sector of this disk is " +
            std::to_string(sectors_per_logical()) + " of them." + kLineEnd;
  }
  report_line(text + operation_line(writes));
}
