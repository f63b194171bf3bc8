#pragma once

#include <string>
#include <vector>

#include "places/disk_partition.h"
#include "places/disk_reader.h"

/// How a disk is divided, from whichever table it has.
struct DiskLayout {
  std::vector<DiskPartition> partitions;
  std::string unknown{};  // why that cannot be told; empty when it can
};

/// Reads the disk's tables. A disk that begins with a file system, or without a signature, has no partitions.
DiskLayout read_layout(const DiskReader& disk);

/// In which partitions the sectors from `first_lba` to before `end_lba` lie: "partition 2, Linux filesystem", with
/// GPT's name in quotes behind; "unpartitioned" for what lies in none; more than three are counted.
std::string partitions_of(const DiskLayout& layout, std::int64_t first_lba, std::int64_t end_lba);
