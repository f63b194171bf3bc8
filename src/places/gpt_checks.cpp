#include "places/gpt_checks.h"

#include <algorithm>
#include <iterator>

namespace {

std::string entry_name(const DiskPartition& partition) {
  return "GPT entry " + std::to_string(partition.number);
}

/// What is wrong with one entry; empty when nothing is.
std::string fault_of(const DiskPartition& partition, const GptHeader& header, std::int64_t disk_sectors) {
  if (partition.sectors <= 0) return "ends before it begins";
  if (disk_sectors > 0 && partition.end_lba() > disk_sectors) return "lies beyond the end of the disk";
  if (partition.first_lba < header.first_usable || partition.end_lba() - 1 > header.last_usable) {
    return "lies outside the sectors that the header calls usable";
  }
  return {};
}

}  // namespace

void check_gpt_partitions(const GptHeader& header, std::int64_t disk_sectors,
                          const std::vector<DiskPartition>& partitions, std::vector<std::string>* damages) {
  std::vector<std::string> found;
  std::vector<const DiskPartition*> by_place;
  for (const DiskPartition& partition : partitions) {
    const std::string fault = fault_of(partition, header, disk_sectors);
    if (!fault.empty()) found.push_back(entry_name(partition) + " " + fault + ".");
    if (partition.sectors > 0) by_place.push_back(&partition);
  }
  std::stable_sort(by_place.begin(), by_place.end(),
                   [](const DiskPartition* a, const DiskPartition* b) { return a->first_lba < b->first_lba; });
  const DiskPartition* furthest = nullptr;  // of those before
  for (const DiskPartition* partition : by_place) {
    if (furthest != nullptr && partition->first_lba < furthest->end_lba()) {
      found.push_back("GPT entries " + std::to_string(furthest->number) + " and " + std::to_string(partition->number) +
                      " lie over each other.");
    }
    if (furthest == nullptr || partition->end_lba() > furthest->end_lba()) furthest = partition;
  }
  constexpr std::size_t kMost = 100;
  if (found.size() > kMost) {
    const std::size_t more = found.size() - kMost + 1;
    found.resize(kMost - 1);
    found.push_back(std::to_string(more) + " entries more have a bad place.");
  }
  damages->insert(damages->end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
}
