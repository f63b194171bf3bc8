#include "measure/graph_marks.h"

#include <algorithm>

namespace {

enum class MarkOf : std::uint8_t { slow, stalled, errors };

bool has_mark(const RateColumn& facts, MarkOf what) {
  switch (what) {
    case MarkOf::slow:
      return facts.slow > 0;
    case MarkOf::stalled:
      return facts.stalled > 0 && facts.slow == 0;
    case MarkOf::errors:
      break;
  }
  return facts.errors > 0;
}

/// The mark of columns `first` to before `end`.
GraphMark mark_of(const std::vector<PixelColumn>& columns, std::int64_t first, std::int64_t end, MarkOf what) {
  GraphMark mark;
  mark.error = what == MarkOf::errors;
  mark.stalled = what == MarkOf::stalled;
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

void add_marks(const std::vector<PixelColumn>& columns, MarkOf what, std::int64_t widest,
               std::vector<GraphMark>* marks) {
  const auto has = [&](std::int64_t i) { return has_mark(columns[static_cast<std::size_t>(i)].facts, what); };
  const std::int64_t pixels = std::ssize(columns);
  for (std::int64_t i = 0; i < pixels; ++i) {
    const std::int64_t first = i;
    while (i < pixels && has(i)) ++i;
    const std::int64_t pieces = (i - first + widest - 1) / widest;
    for (std::int64_t piece = 0; piece < pieces; ++piece) {
      const auto edge = [&](std::int64_t which) { return first + which * (i - first) / pieces; };
      marks->push_back(mark_of(columns, edge(piece), edge(piece + 1), what));
    }
  }
}

}  // namespace

std::vector<GraphMark> graph_marks(const RateMap& map, std::int64_t pixels, std::int64_t widest) {
  std::vector<PixelColumn> columns(static_cast<std::size_t>(std::max<std::int64_t>(pixels, 0)));
  resample(map, columns);
  std::vector<GraphMark> marks;
  for (const MarkOf what : {MarkOf::slow, MarkOf::stalled, MarkOf::errors}) add_marks(columns, what, widest, &marks);
  return marks;
}
