#include "pictures/panel.h"

#include <algorithm>
#include <cmath>

#include "disk/progress.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "measure/measure.h"
#include "pictures/palette.h"
#include "pictures/parts.h"
#include "pictures/views.h"
#include "platform/geometry.h"

namespace {

using platform::Canvas;
using platform::Point;
using platform::Rect;

void draw_pointed_at(Canvas* canvas) {
  if (!panel.pointer) return;
  const std::optional<PixelColumn> stretch = stretch_at(*panel.pointer);
  if (!stretch) return;
  const Palette palette = palette_of(colors_of(*canvas));
  const int width = std::max(platform::scaled(1, dpi_of(*canvas)), 1);
  if (panel.view == PanelView::rate_graph) {
    const int x = panel.pointer->x;
    draw_line(canvas, {x, panel.plot.y}, {x, panel.plot.y + panel.plot.height}, {palette.faint, width});
  } else {
    const Rect cell = place_of_cell(panel.grid, *cell_at(panel.grid, *panel.pointer));
    const std::vector<Point> edge = {{cell.x, cell.y},
                                     {cell.x + cell.width, cell.y},
                                     {cell.x + cell.width, cell.y + cell.height},
                                     {cell.x, cell.y + cell.height},
                                     {cell.x, cell.y}};
    draw_polyline(canvas, edge, {palette.text, width});
  }
  draw_note(canvas, *panel.pointer, stretch_lines(*stretch));
}

void paint(Canvas* canvas) {
  draw_paper(canvas);
  panel.plot = {};
  panel.grid = {};
  if (measure.map.columns == 0) {
    draw_hint(canvas, panel.view == PanelView::rate_graph ? "The rates of a run appear here."
                                                          : "The blocks of a run appear here.");
    return;
  }
  if (panel.view == PanelView::rate_graph) {
    panel.plot = draw_rate_graph(measure, progress.SlowRate, canvas);
  } else {
    panel.grid = draw_block_map(measure, canvas);
  }
  draw_pointed_at(canvas);
}

std::uint64_t revision() {
  // Any of them moving on gives another number; a whole run of one cannot make up for the other.
  constexpr std::uint64_t kChange = std::uint64_t{1} << 40;
  const auto limit = static_cast<std::uint64_t>(std::llround(progress.SlowRate * 1000.0));
  return (measure.runs + panel.changes) * kChange + static_cast<std::uint64_t>(measure.transfers) + (limit << 20);
}

std::string description() {
  std::string text = panel.view == PanelView::rate_graph ? "Rate graph" : "Block map";
  const std::optional<PixelColumn> stretch = panel.pointer ? stretch_at(*panel.pointer) : std::nullopt;
  if (!stretch) return text;
  for (const std::string& line : stretch_lines(*stretch)) text += ", " + line;
  return text;
}

void on_hover(const Point* pointer) {
  panel.pointer = pointer != nullptr ? std::optional(*pointer) : std::nullopt;
  ++panel.changes;
}

void on_double_click(Point place) {
  const std::optional<PixelColumn> stretch = stretch_at(place);
  if (!stretch || form1.command_running) return;
  form1.TxtStartLBA.set_text(std::to_string(stretch->first_lba));
  form1.RangeEdited = true;  // as typing it does
}

}  // namespace

const platform::Picture kPanelPicture = {paint, revision, description, on_hover, on_double_click};

void show_panel_view(PanelView view) {
  panel.view = view;
  panel.graph_tab.set_on(view == PanelView::rate_graph);
  panel.map_tab.set_on(view == PanelView::block_map);
  ++panel.changes;
}

void graph_tab_click() {
  show_panel_view(PanelView::rate_graph);
}

void map_tab_click() {
  show_panel_view(PanelView::block_map);
}

std::optional<PixelColumn> stretch_at(Point point) {
  if (panel.view == PanelView::rate_graph) {
    if (!contains(panel.plot, point)) return std::nullopt;
    return pixel_column(measure.map, point.x - panel.plot.x, panel.plot.width);
  }
  const std::optional<std::int64_t> cell = cell_at(panel.grid, point);
  if (!cell) return std::nullopt;
  return pixel_column(measure.map, *cell, panel.grid.cells);
}

std::vector<std::string> stretch_lines(const PixelColumn& stretch) {
  const RateColumn& facts = stretch.facts;
  std::vector<std::string> lines = {"LBA " + std::to_string(stretch.first_lba) + " to " +
                                    std::to_string(stretch.end_lba - 1)};
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
  if (facts.errors > 0) lines.emplace_back("error");
  return lines;
}
