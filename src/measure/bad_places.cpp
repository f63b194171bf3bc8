#include "measure/bad_places.h"

#include <algorithm>
#include <iterator>

const char* bad_kind_text(BadKind kind) {
  switch (kind) {
    case BadKind::unreadable:
      return "unreadable";
    case BadKind::slow:
      return "slow";
    case BadKind::failed_transfer:
      return "failed transfer";
    case BadKind::stalled_transfer:
      break;
  }
  return "stalled transfer";
}

std::string lba_text(const BadRange& range) {
  if (range.sectors == 1) return "LBA " + std::to_string(range.first_lba);
  return "LBA " + std::to_string(range.first_lba) + " to " + std::to_string(range.end_lba() - 1);
}

std::vector<BadRange> ranges_in(const std::vector<BadRange>& ranges, std::int64_t first_lba, std::int64_t end_lba) {
  std::vector<BadRange> touching;
  std::copy_if(ranges.begin(), ranges.end(), std::back_inserter(touching),
               [&](const BadRange& range) { return range.first_lba < end_lba && range.end_lba() > first_lba; });
  return touching;
}
