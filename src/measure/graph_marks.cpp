#include "measure/graph_marks.h"

#include <algorithm>

namespace {

std::int64_t count_in(const RateColumn& facts, bool errors) {
  return errors ? facts.errors : facts.slow;
}

/// The mark of columns `first` to before `end`.
GraphMark mark_of(const std::vector<PixelColumn>& columns, std::int64_t first, std::int64_t end, bool errors) {
  GraphMark mark;
  mark.error = errors;
  mark.pixel = first + (end - first) / 2;
  mark.first_lba = columns[static_cast<std::size_t>(first)].first_lba;
  for (std::int64_t i = first; i < end; ++i) {
    const PixelColumn& column = columns[static_cast<std::size_t>(i)];
    const double lowest = column.facts.lowest;
    mark.end_lba = column.end_lba;
    mark.longest = std::max(mark.longest, static_cast<double>(column.facts.longest));
    if (lowest > 0.0) mark.lowest_rate = mark.lowest_rate > 0.0 ? std::min(mark.lowest_rate, lowest) : lowest;
  }
  return mark;
}

void add_marks(const std::vector<PixelColumn>& columns, bool errors, std::int64_t widest,
               std::vector<GraphMark>* marks) {
  const auto has = [&](std::int64_t i) { return count_in(columns[static_cast<std::size_t>(i)].facts, errors) > 0; };
  const std::int64_t pixels = std::ssize(columns);
  for (std::int64_t i = 0; i < pixels; ++i) {
    const std::int64_t first = i;
    while (i < pixels && has(i)) ++i;
    const std::int64_t pieces = (i - first + widest - 1) / widest;
    for (std::int64_t piece = 0; piece < pieces; ++piece) {
      const auto edge = [&](std::int64_t which) { return first + which * (i - first) / pieces; };
      marks->push_back(mark_of(columns, edge(piece), edge(piece + 1), errors));
    }
  }
}

}  // namespace

std::vector<GraphMark> graph_marks(const RateMap& map, std::int64_t pixels, std::int64_t widest) {
  std::vector<PixelColumn> columns(static_cast<std::size_t>(std::max<std::int64_t>(pixels, 0)));
  resample(map, columns);
  std::vector<GraphMark> marks;
  add_marks(columns, false, widest, &marks);
  add_marks(columns, true, widest, &marks);
  return marks;
}
