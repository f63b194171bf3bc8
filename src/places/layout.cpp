#include "places/layout.h"

#include <algorithm>

#include "disk/error_text.h"
#include "places/boot_sector.h"
#include "places/gpt.h"
#include "places/mbr.h"
#include "places/shown_text.h"

namespace {

std::string partition_name(const DiskPartition& partition) {
  std::string name = "partition " + std::to_string(partition.number) + ", " + partition.type;
  if (!partition.name.empty()) name += " \"" + partition.name + "\"";
  return name;
}

/// Sectors of the stretch that lie in a partition.
std::int64_t shared(const DiskPartition& partition, std::int64_t first_lba, std::int64_t end_lba) {
  return std::max<std::int64_t>(0, std::min(partition.end_lba(), end_lba) - std::max(partition.first_lba, first_lba));
}

}  // namespace

DiskLayout read_layout(const DiskReader& disk) {
  DiskLayout layout;
  std::vector<std::uint8_t> sector(static_cast<std::size_t>(disk.logical));
  const std::uint32_t code = disk.read(0, sector);
  if (code != 0) {
    layout.unknown = "partition cannot be learned: " + coded_error_text(code);
    return layout;
  }
  if (!has_boot_signature(sector) || decode_boot_sector(sector)) return layout;
  const std::array<MbrEntry, 4> primaries = decode_mbr(sector);
  const bool protective = std::any_of(primaries.begin(), primaries.end(),
                                      [](const MbrEntry& entry) { return entry.type == kProtectiveType; });
  if (protective) layout.partitions = read_gpt(disk).partitions;
  const bool has_gpt = !layout.partitions.empty();
  int number = 0;
  for (const MbrEntry& entry : primaries) {
    ++number;
    if (entry.type == 0 || entry.sectors == 0 || (has_gpt && entry.type == kProtectiveType)) continue;
    layout.partitions.push_back(mbr_partition(number, entry, 0, disk.per_logical()));
  }
  const LogicalTable logical = read_logical(disk, primaries);
  layout.partitions.insert(layout.partitions.end(), logical.partitions.begin(), logical.partitions.end());
  return layout;
}

std::string partitions_of(const DiskLayout& layout, std::int64_t first_lba, std::int64_t end_lba) {
  if (!layout.unknown.empty()) return layout.unknown;
  constexpr std::size_t kNamed = 3;
  std::vector<std::string> names;
  std::int64_t covered = 0;
  for (const bool containers : {false, true}) {
    // What lies in an extended partition and in none of its logical ones belongs to that.
    if (containers && covered >= end_lba - first_lba) break;
    for (const DiskPartition& partition : layout.partitions) {
      const std::int64_t sectors = shared(partition, first_lba, end_lba);
      if (sectors == 0 || partition.holds_others != containers) continue;
      names.push_back(partition_name(partition));
      if (!containers) covered += sectors;
      if (containers) covered = std::max(covered, sectors);
    }
  }
  if (covered < end_lba - first_lba) names.emplace_back("unpartitioned");
  if (names.size() > kNamed) {
    const std::size_t more = names.size() - kNamed;
    names.resize(kNamed);
    names.push_back(std::to_string(more) + " more");
  }
  return joined(names, "; ");
}
