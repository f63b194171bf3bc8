#include "pictures/panel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "disk/progress.h"
#include "form/form1.h"
#include "measure/bad_words.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "pictures/palette.h"
#include "pictures/panel_place.h"
#include "pictures/parts.h"
#include "pictures/views.h"
#include "platform/geometry.h"

namespace {

using platform::Canvas;
using platform::Point;
using platform::Rect;

void draw_pointed_at(Canvas* canvas) {
  if (!panel.pointer) return;
  const std::optional<PanelPlace> place = place_at(*panel.pointer);
  if (!place) return;
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
  draw_note(canvas, *panel.pointer, place_lines(*place));
}

void paint(Canvas* canvas) {
  draw_paper(canvas);
  panel.plot = {};
  panel.marks = {};
  panel.grid = {};
  if (measure.map.columns == 0) {
    draw_hint(canvas, panel.view == PanelView::rate_graph ? "The rates of a run appear here."
                                                          : "The blocks of a run appear here.");
    return;
  }
  if (panel.view == PanelView::rate_graph) {
    GraphView graph = draw_rate_graph(measure, progress.SlowRate, canvas);
    panel.plot = graph.plot;
    panel.marks = std::move(graph.marks);
  } else {
    panel.grid = draw_block_map(measure, canvas);
  }
  draw_pointed_at(canvas);
}

std::uint64_t revision() {
  const auto limit = static_cast<std::uint64_t>(std::llround(progress.SlowRate * 1000.0));
  std::uint64_t mixed = 0;
  for (const std::uint64_t part :
       {measure.runs, panel.changes, static_cast<std::uint64_t>(measure.transfers), limit,
        std::uint64_t{run_findings.bad.size()}, std::uint64_t{form1.command_running ? 1U : 0U}}) {
    constexpr std::uint64_t kPrime = 0x100000001B3;  // of the 64-bit FNV hash
    mixed = (mixed ^ part) * kPrime;
  }
  return mixed;
}

/// Of the place under the pointer, else of the whole run.
std::string description() {
  std::string text = panel.view == PanelView::rate_graph ? "Rate graph" : "Block map";
  const std::optional<PanelPlace> place = panel.pointer ? place_at(*panel.pointer) : std::nullopt;
  for (const std::string& line : place ? place_lines(*place) : bad_range_lines(run_findings.bad)) text += ", " + line;
  return text;
}

void on_hover(const Point* pointer) {
  panel.pointer = pointer != nullptr ? std::optional(*pointer) : std::nullopt;
  ++panel.changes;
}

void on_double_click(Point point) {
  const std::optional<PanelPlace> place = place_at(point);
  if (!place || form1.command_running) return;
  const std::int64_t first = place->taken ? place->taken->first_lba : place->stretch.first_lba;
  form1.TxtStartLBA.set_text(std::to_string(first));
  if (place->taken) form1.TxtNoSecs.set_text(std::to_string(place->taken->end_lba - first));
  form1.RangeEdited = true;  // as typing it does
}

void mark(platform::Field* tab, bool on) {
  if (tab->on() != on) tab->set_on(on);
}

/// The report has a tab only where it shares its place with the pictures.
void mark_tabs() {
  const bool report = !panel.has_own_place && form1.report_in_front;
  mark(&panel.report_tab, report);
  mark(&panel.graph_tab, !report && panel.view == PanelView::rate_graph);
  mark(&panel.map_tab, !report && panel.view == PanelView::block_map);
}

}  // namespace

const platform::Picture kPanelPicture = {paint, revision, description, on_hover, on_double_click};

void show_panel_view(PanelView view) {
  panel.view = view;
  if (!panel.has_own_place) form1.report_in_front = false;
  mark_tabs();
  ++panel.changes;
}

void report_tab_click() {
  form1.report_in_front = true;
  mark_tabs();
}

void graph_tab_click() {
  show_panel_view(PanelView::rate_graph);
}

void map_tab_click() {
  show_panel_view(PanelView::block_map);
}

bool panel_in_front(bool has_own_place) {
  panel.has_own_place = has_own_place;
  mark_tabs();
  return !has_own_place && !form1.report_in_front;
}
