#include "pictures/panel_place.h"

#include <algorithm>

#include "form/form1.h"
#include "form/number_text.h"
#include "measure/bad_words.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "pictures/panel.h"

namespace {

using platform::Point;
using Range = PanelPlace::Range;

/// The mark that is drawn at `point`; the errors lie on top, and come last.
const PlacedMark* mark_at(Point point) {
  const auto found = std::find_if(panel.marks.rbegin(), panel.marks.rend(),
                                  [point](const PlacedMark& one) { return contains(one.place, point); });
  return found == panel.marks.rend() ? nullptr : &*found;
}

/// The mark that stands for `stretch` among others.
const PlacedMark* mark_of(const PixelColumn& stretch) {
  const auto found = std::find_if(panel.marks.rbegin(), panel.marks.rend(), [&stretch](const PlacedMark& one) {
    return one.mark.first_lba <= stretch.first_lba && stretch.end_lba <= one.mark.end_lba;
  });
  return found == panel.marks.rend() ? nullptr : &*found;
}

/// What a double click takes of `marked`: its bad ranges from first to last, all of it where none is known.
Range taken_of(const Range& marked, const std::vector<BadRange>& bad) {
  if (bad.empty()) return marked;
  Range taken{bad.front().first_lba, bad.front().end_lba()};
  for (const BadRange& range : bad) {
    taken.first_lba = std::min(taken.first_lba, range.first_lba);
    taken.end_lba = std::max(taken.end_lba, range.end_lba());
  }
  return taken;
}

std::optional<PanelPlace> place_in_graph(Point point) {
  const PlacedMark* const hit = mark_at(point);
  if (hit == nullptr && !contains(panel.plot, point)) return std::nullopt;
  const std::int64_t pixel = hit != nullptr ? hit->mark.pixel : point.x - panel.plot.x;
  const PixelColumn stretch = pixel_column(measure.map, pixel, panel.plot.width);
  const PlacedMark* const mark = hit != nullptr ? hit : mark_of(stretch);
  const Range looked =
      mark != nullptr ? Range{mark->mark.first_lba, mark->mark.end_lba} : Range{stretch.first_lba, stretch.end_lba};
  PanelPlace place{stretch, mark != nullptr, ranges_in(run_findings.bad, looked.first_lba, looked.end_lba), {}};
  if (hit != nullptr) place.taken = taken_of(looked, place.bad);
  return place;
}

std::optional<PanelPlace> place_in_map(Point point) {
  const std::optional<std::int64_t> cell = cell_at(panel.grid, point);
  if (!cell) return std::nullopt;
  const PixelColumn stretch = pixel_column(measure.map, *cell, panel.grid.cells);
  const std::vector<BadRange> bad = ranges_in(run_findings.bad, stretch.first_lba, stretch.end_lba);
  const bool marked = stretch.facts.errors > 0 || stretch.facts.slow > 0 || stretch.facts.stalled > 0 || !bad.empty();
  PanelPlace place{stretch, marked, bad, {}};
  if (marked) place.taken = taken_of({stretch.first_lba, stretch.end_lba}, bad);
  return place;
}

std::string lba_range(std::int64_t first_lba, std::int64_t end_lba) {
  return "LBA " + std::to_string(first_lba) + " to " + std::to_string(end_lba - 1);
}

}  // namespace

std::optional<PanelPlace> place_at(Point point) {
  return panel.view == PanelView::rate_graph ? place_in_graph(point) : place_in_map(point);
}

std::vector<std::string> place_lines(const PanelPlace& place) {
  const RateColumn& facts = place.stretch.facts;
  std::vector<std::string> lines = {lba_range(place.stretch.first_lba, place.stretch.end_lba)};
  if (facts.transfers == 0) {
    lines.emplace_back("nothing transferred");
    return lines;
  }
  if (facts.seconds > 0.0) {
    lines.push_back(fixed_text(average_rate(facts), 1) + " MB/s (" + fixed_text(facts.lowest, 1) + " to " +
                    fixed_text(facts.highest, 1) + ")");
  }
  constexpr double kMilliseconds = 1000.0;
  lines.push_back("up to " + fixed_text(facts.longest * kMilliseconds, 1) + " ms");
  if (facts.slow > 0) lines.emplace_back("slow");
  if (facts.stalled > 0) lines.emplace_back("stalled");
  if (facts.errors > 0) lines.emplace_back("error");
  for (std::string& line : bad_range_lines(place.bad)) lines.push_back(std::move(line));
  if (!place.marked || form1.command_running) return lines;
  lines.push_back("double click: " + (place.taken ? "range " + lba_range(place.taken->first_lba, place.taken->end_lba)
                                                  : "start LBA " + std::to_string(place.stretch.first_lba)));
  return lines;
}
