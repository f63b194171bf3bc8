#include "measure/bad_words.h"

#include <cmath>

std::string bad_range_text(const BadRange& range) {
  const bool late = range.kind == BadKind::slow || range.kind == BadKind::stalled_transfer;
  const std::string time = late ? ", " + std::to_string(std::llround(range.milliseconds)) + " ms" : "";
  return std::string(bad_kind_text(range.kind)) + ": " + lba_text(range) + time;
}

std::vector<std::string> bad_range_lines(const std::vector<BadRange>& ranges) {
  constexpr std::size_t kMost = 3;
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < ranges.size() && i < kMost; ++i) lines.push_back(bad_range_text(ranges[i]));
  if (ranges.size() > kMost) lines.push_back("and " + std::to_string(ranges.size() - kMost) + " more");
  return lines;
}
