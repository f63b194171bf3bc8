#include "measure/graph_marks.h"

#include <algorithm>

namespace {

constexpr std::int64_t kWidest = 8;  // pixels

void add_marks(const std::vector<PixelColumn>& columns, bool errors, std::vector<GraphMark>* marks) {
  const auto count = [&](std::int64_t i) {
    const RateColumn& facts = columns[static_cast<std::size_t>(i)].facts;
    return std::int64_t{errors ? facts.errors : facts.slow};
  };
  const std::int64_t pixels = std::ssize(columns);
  for (std::int64_t i = 0; i < pixels;) {
    if (count(i) == 0) {
      ++i;
      continue;
    }
    GraphMark mark;
    mark.error = errors;
    mark.first_lba = columns[static_cast<std::size_t>(i)].first_lba;
    const std::int64_t first = i;
    for (; i < pixels && i < first + kWidest && count(i) > 0; ++i) {
      const PixelColumn& column = columns[static_cast<std::size_t>(i)];
      const double lowest = column.facts.lowest;
      mark.end_lba = column.end_lba;
      mark.transfers = std::max(mark.transfers, count(i));
      mark.longest = std::max(mark.longest, static_cast<double>(column.facts.longest));
      if (lowest > 0.0) mark.lowest_rate = mark.lowest_rate > 0.0 ? std::min(mark.lowest_rate, lowest) : lowest;
    }
    mark.pixel = first + (i - first) / 2;
    marks->push_back(mark);
  }
}

}  // namespace

std::vector<GraphMark> graph_marks(const RateMap& map, std::int64_t pixels) {
  std::vector<PixelColumn> columns(static_cast<std::size_t>(std::max<std::int64_t>(pixels, 0)));
  resample(map, columns);
  std::vector<GraphMark> marks;
  add_marks(columns, false, &marks);
  add_marks(columns, true, &marks);
  return marks;
}
