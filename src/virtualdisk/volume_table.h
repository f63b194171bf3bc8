#pragma once

#include <optional>
#include <vector>

#include "virtualdisk/disk.h"

/// What a disk's contents say of its volumes, read anew at each question, since they may be written to. No fault and no
/// time of the disk's file touches these reads: the system has read long before.
namespace virtualdisk {

/// The partitions of the disk in sectors of 512 bytes: those of its GUID partition table, else the classic ones and
/// then the logical ones.
std::vector<Range> partitions(const VirtualDisk& disk);

/// The partition of volume `volume`: the volumes have them in the order listed. Nothing where there are too few.
std::optional<Range> partition_of(const VirtualDisk& disk, std::size_t volume);

/// Where a volume's clusters lie: number 0 at sector `first` of the disk, as Windows counts them.
struct Clusters {
  std::int64_t first = 0;
  std::int64_t sectors = 0;  // of a cluster
  std::int64_t count = 0;
  bool ntfs = false;

  /// The clusters that these sectors touch, as first and count; none for sectors that lie before them.
  Range touched(const Range& sectors_of_disk) const;
};

/// By the boot sector of NTFS, FAT12, FAT16 or FAT32; nothing where the partition begins with none of them.
std::optional<Clusters> clusters_of(const VirtualDisk& disk, const Range& partition);

}  // namespace virtualdisk
