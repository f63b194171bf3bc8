#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "form/number_text.h"
#include "measure/graph_marks.h"
#include "measure/graph_scale.h"
#include "pictures/palette.h"
#include "pictures/parts.h"
#include "pictures/views.h"
#include "platform/geometry.h"

namespace {

using platform::Align;
using platform::Canvas;
using platform::Mark;
using platform::Point;
using platform::Rect;
using Sign = LegendEntry::Sign;

// Pixels at 96 dpi.
constexpr int kLeft = 44;
constexpr int kRight = 26;
constexpr int kBottom = 24;
constexpr int kLeastPlot = 24;
constexpr int kTickEveryX = 72;
constexpr int kTickEveryY = 30;
constexpr int kMark = 10;

/// Where things stand: everything that drawing needs.
struct Drawing {
  const Measure& measured;
  double slow_limit;
  Canvas* canvas;
  Palette palette;
  int dpi;
  Rect plot;
  Scale rates;

  int px(int pixels) const { return std::max(platform::scaled(pixels, dpi), 1); }
  int y_at(double rate) const { return plot.y + static_cast<int>(std::lround(y_of(rates, rate, plot.height))); }
  int bottom() const { return plot.y + plot.height; }
};

std::vector<LegendEntry> legend_of(const Measure& measured, double slow_limit, const Palette& palette) {
  std::vector<LegendEntry> entries{{Sign::none, {}, "MB/s"}};
  if (is_random(measured.plan.kind)) {
    entries.push_back({Sign::dot, palette.average, "transfer"});
  } else {
    entries.push_back({Sign::line, palette.average, "average"});
    entries.push_back({Sign::box, palette.band, "min-max"});
  }
  entries.push_back({Sign::dashes, palette.limit, "limit " + double_text(slow_limit)});
  entries.push_back({Sign::triangle, palette.slow, "slow: " + std::to_string(measured.slow)});
  if (measured.stalled > 0) {
    entries.push_back({Sign::triangle, palette.slow, "stalled: " + std::to_string(measured.stalled)});
  }
  entries.push_back({Sign::cross, palette.error, "errors: " + std::to_string(measured.failed)});
  return entries;
}

void draw_rate_ticks(const Drawing& drawing) {
  const Scale& rates = drawing.rates;
  const int height = drawing.px(16);
  for (int i = 0; i * rates.step <= rates.top * (1.0 + 1e-9); ++i) {
    const int y = drawing.y_at(i * rates.step);
    draw_line(drawing.canvas, {drawing.plot.x, y}, {drawing.plot.x + drawing.plot.width, y},
              {drawing.palette.grid, drawing.px(1)});
    draw_text(drawing.canvas, {0, y - height / 2, drawing.plot.x - drawing.px(6), height},
              fixed_text(i * rates.step, rates.decimals), Align::right, drawing.palette.faint);
  }
}

void draw_range_ticks(const Drawing& drawing) {
  const RateMap& map = drawing.measured.map;
  const Rect& plot = drawing.plot;
  const RangeAxis axis = range_axis(map.first_lba, map.sectors, plot.width / drawing.px(kTickEveryX));
  const int right = size_of(*drawing.canvas).width;
  for (const RangeAxis::Tick& tick : axis.ticks) {
    const int x = plot.x + static_cast<int>(std::lround(tick.share * plot.width));
    draw_line(drawing.canvas, {x, plot.y}, {x, drawing.bottom() + drawing.px(4)},
              {drawing.palette.grid, drawing.px(1)});
    const std::string label = fixed_text(tick.value, axis.decimals) + " " + axis.unit;
    const int width = platform::text_size(*drawing.canvas, label).width;
    const int left = std::clamp(x - width / 2, 0, std::max(right - width - drawing.px(2), 0));
    draw_text(drawing.canvas, {left, drawing.bottom() + drawing.px(5), width, drawing.px(16)}, label, Align::left,
              drawing.palette.faint);
  }
}

void draw_frame(const Drawing& drawing) {
  const Rect& plot = drawing.plot;
  const std::vector<Point> corners = {
      {plot.x, plot.y}, {plot.x, drawing.bottom()}, {plot.x + plot.width, drawing.bottom()}};
  draw_polyline(drawing.canvas, corners, {drawing.palette.frame, drawing.px(1)});
}

void draw_band_and_line(const Drawing& drawing) {
  std::vector<PixelColumn> columns(static_cast<std::size_t>(drawing.plot.width));
  resample(drawing.measured.map, columns);
  const platform::Pen pen{drawing.palette.average, drawing.px(2)};
  std::vector<Point> line;
  std::vector<std::vector<Point>> lines;
  for (std::size_t i = 0; i <= columns.size(); ++i) {
    if (i == columns.size() || columns[i].facts.seconds <= 0.0) {
      if (!line.empty()) lines.push_back(std::move(line));
      line.clear();
      continue;
    }
    const RateColumn& facts = columns[i].facts;
    const int x = drawing.plot.x + static_cast<int>(i);
    const int top = drawing.y_at(facts.highest);
    fill(drawing.canvas, {x, top, 1, drawing.y_at(facts.lowest) - top + 1}, drawing.palette.band);
    line.push_back({x, drawing.y_at(average_rate(facts))});
  }
  for (std::vector<Point>& stretch : lines) {
    // A stretch of one column is still seen.
    if (stretch.size() == 1) stretch.push_back({stretch[0].x + 1, stretch[0].y});
    draw_polyline(drawing.canvas, stretch, pen);
  }
}

void draw_points(const Drawing& drawing) {
  const RateMap& map = drawing.measured.map;
  std::vector<Point> centers;
  for (const RatePoint& point : points(map)) {
    if (point.failed) continue;
    const int x = drawing.plot.x + static_cast<int>(x_of(map, point.lba, drawing.plot.width));
    centers.push_back({x, drawing.y_at(point.rate)});
  }
  draw_dots(drawing.canvas, centers, drawing.px(2), drawing.palette.average);
}

void draw_slow_limit(const Drawing& drawing) {
  const int y = drawing.y_at(drawing.slow_limit);
  draw_line(drawing.canvas, {drawing.plot.x, y}, {drawing.plot.x + drawing.plot.width, y},
            {drawing.palette.limit, drawing.px(1), true});
}

/// Slow transfers stand at their rate, errors, which have none, at the upper edge.
std::vector<PlacedMark> draw_marks(const Drawing& drawing) {
  const int size = drawing.px(kMark);
  const std::int64_t widest = std::int64_t{2} * size;
  std::vector<PlacedMark> placed;
  for (const GraphMark& mark : graph_marks(drawing.measured.map, drawing.plot.width, widest)) {
    const int x = drawing.plot.x + static_cast<int>(mark.pixel);
    const int y =
        mark.error ? drawing.plot.y + size : std::min(drawing.y_at(mark.lowest_rate), drawing.bottom() - size);
    draw_mark(drawing.canvas, mark.error ? Mark::cross : Mark::triangle, {x, y}, size,
              {mark.error ? drawing.palette.error : drawing.palette.slow, drawing.px(2)});
    placed.push_back({mark, {x - size / 2, y - size / 2, size + 1, size + 1}});
  }
  return placed;
}

}  // namespace

GraphView draw_rate_graph(const Measure& of, double slow_limit, Canvas* canvas) {
  const Palette palette = palette_of(colors_of(*canvas));
  const int dpi = dpi_of(*canvas);
  const platform::Size size = size_of(*canvas);
  const int margin = platform::scaled(kPictureMargin, dpi);
  const std::vector<LegendEntry> entries = legend_of(of, slow_limit, palette);
  const int legend = draw_legend(canvas, {margin, margin / 2, size.width - 2 * margin, 0}, entries, palette);
  const int left = platform::scaled(kLeft, dpi);
  const int top = margin / 2 + legend + platform::scaled(8, dpi);
  const Rect plot{left, top, size.width - left - platform::scaled(kRight, dpi),
                  size.height - top - platform::scaled(kBottom, dpi)};
  const int least = platform::scaled(kLeastPlot, dpi);
  if (of.map.columns == 0 || plot.width < least || plot.height < least) return {};
  const Scale rates = rate_scale(of, slow_limit, std::max(plot.height / platform::scaled(kTickEveryY, dpi), 1));
  const Drawing drawing{of, slow_limit, canvas, palette, dpi, plot, rates};
  draw_rate_ticks(drawing);
  draw_range_ticks(drawing);
  if (is_random(of.plan.kind)) {
    draw_points(drawing);
  } else {
    draw_band_and_line(drawing);
  }
  draw_slow_limit(drawing);
  draw_frame(drawing);
  return {plot, draw_marks(drawing)};
}
