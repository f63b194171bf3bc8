#include "places/owners.h"

#include <algorithm>
#include <span>
#include <string>

#include "device/volume_disk.h"
#include "disk/drive.h"
#include "disk/error_text.h"
#include "places/layout.h"
#include "places/shown_text.h"
#include "places/volume_owners.h"

namespace {

void name_partitions(int drive, std::span<BadRange> ranges) {
  const ReadOnlyDrive opened(drive);
  DiskLayout layout;
  if (opened.code() == 0) {
    layout = read_layout(opened.reader(disk.sizes.logical));
  } else {
    layout.unknown = "partition cannot be learned: " + coded_error_text(opened.code());
  }
  for (BadRange& range : ranges) range.partition = partitions_of(layout, range.first_lba, range.end_lba());
}

/// The stretch of the volume that `range` and `extent` share, in bytes of the volume.
VolumeStretch shared_stretch(const BadRange& range, const DiskExtent& extent) {
  const std::int64_t first = std::max(range.first_lba * SectorSize, extent.first);
  const std::int64_t end = std::min(range.end_lba() * SectorSize, extent.first + extent.bytes);
  return {.first = first - extent.first, .bytes = std::max<std::int64_t>(end - first, 0)};
}

/// Adds to each range's answers what the volume says of it.
void ask_volume(int drive, const VolumeOfDrive& volume, std::span<BadRange> ranges,
                std::vector<std::vector<std::string>>* answers) {
  std::vector<std::size_t> asked;
  std::vector<VolumeStretch> stretches;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    for (const DiskExtent& extent : volume.extents) {
      const VolumeStretch stretch = shared_stretch(ranges[i], extent);
      if (extent.disk != static_cast<std::uint32_t>(drive) || stretch.bytes == 0) continue;
      if (is_exact(ranges[i].kind)) {
        asked.push_back(i);
        stretches.push_back(stretch);
      } else {
        (*answers)[i].push_back(volume.name);
      }
    }
  }
  if (asked.empty()) return;
  // Where the parts of a volume in several pieces stand in it, only its driver knows.
  const std::vector<std::string> owners =
      volume.extents.size() == 1
          ? volume_owners(drive, volume.name, stretches)
          : std::vector<std::string>(asked.size(), "owner cannot be learned: the volume lies in several pieces");
  for (std::size_t i = 0; i < asked.size(); ++i) (*answers)[asked[i]].push_back(volume.name + ", " + owners[i]);
}

std::string no_volume_text(const VolumesOfDrive& volumes) {
  if (volumes.refused.empty()) return "no volume of Windows";
  return "no volume of Windows that could be asked; " + volumes.refused + " " + coded_error_text(volumes.refusal);
}

}  // namespace

void name_owners(int drive, std::vector<BadRange>* ranges) {
  const std::span<BadRange> named(ranges->data(), std::min(ranges->size(), kMostNamedRanges));
  if (named.empty()) return;
  name_partitions(drive, named);
  const VolumesOfDrive volumes = volumes_of(drive);
  std::vector<std::vector<std::string>> answers(named.size());
  for (const VolumeOfDrive& volume : volumes.found) ask_volume(drive, volume, named, &answers);
  for (std::size_t i = 0; i < named.size(); ++i) {
    named[i].owner = answers[i].empty() ? no_volume_text(volumes) : joined(answers[i], "; ");
  }
}
