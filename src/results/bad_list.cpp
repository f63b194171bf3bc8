#include <algorithm>
#include <string>

#include "results/result.h"

std::string bad_list(const std::vector<BadRange>& ranges) {
  std::string lines;
  for (const BadRange& range : ranges) {
    std::string kind = bad_kind_text(range.kind);
    std::replace(kind.begin(), kind.end(), ' ', '-');
    lines += std::to_string(range.first_lba) + "," + std::to_string(range.sectors) + "," + kind + "," +
             std::to_string(range.code) + "\r\n";
  }
  return lines;
}
