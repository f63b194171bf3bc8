#include <algorithm>
#include <string>
#include <vector>

#include "pictures/palette.h"
#include "pictures/parts.h"
#include "pictures/views.h"
#include "platform/geometry.h"

namespace {

using platform::Canvas;
using platform::Point;
using platform::Rect;

constexpr int kSmallestCell = 9;  // pixels at 96 dpi

std::vector<LegendEntry> legend_of(const Measure& measured, const Palette& palette) {
  std::vector<LegendEntry> entries{{LegendEntry::Sign::none, {}, "beyond usual:"}};
  for (std::size_t i = 0; i < kLatencyClasses; ++i) {
    const auto which = static_cast<LatencyClass>(i);
    const auto sign = which == LatencyClass::error ? LegendEntry::Sign::crossed_box : LegendEntry::Sign::box;
    entries.push_back({sign, palette.classes.at(i),
                       std::string(class_text(which)) + ": " + std::to_string(measured.latency.classes.at(i))});
  }
  return entries;
}

/// The smallest cells that fill the room with no more of them than the map has stretches.
CellGrid grid_for(const RateMap& map, const Rect& room, int dpi) {
  CellGrid grid;
  if (map.columns == 0) return grid;
  for (int pitch = std::max(platform::scaled(kSmallestCell, dpi), 2); pitch <= std::min(room.width, room.height);
       ++pitch) {
    const std::int64_t in_row = room.width / pitch;
    const std::int64_t cells = in_row * (room.height / pitch);
    if (cells > map.columns && 2 * pitch <= room.height) continue;
    grid = {{room.x, room.y}, pitch, pitch - std::max(pitch / 8, 1), in_row, std::min(cells, map.columns)};
    break;
  }
  return grid;
}

}  // namespace

Rect place_of_cell(const CellGrid& grid, std::int64_t cell) {
  return {grid.first.x + static_cast<int>(cell % grid.in_row) * grid.pitch,
          grid.first.y + static_cast<int>(cell / grid.in_row) * grid.pitch, grid.size, grid.size};
}

std::optional<std::int64_t> cell_at(const CellGrid& grid, Point point) {
  if (grid.cells == 0 || point.x < grid.first.x || point.y < grid.first.y) return std::nullopt;
  const std::int64_t column = (point.x - grid.first.x) / grid.pitch;
  const std::int64_t cell = (point.y - grid.first.y) / grid.pitch * grid.in_row + column;
  if (column >= grid.in_row || cell >= grid.cells) return std::nullopt;
  return cell;
}

CellGrid draw_block_map(const Measure& of, Canvas* canvas) {
  const Palette palette = palette_of(colors_of(*canvas));
  const int dpi = dpi_of(*canvas);
  const platform::Size size = size_of(*canvas);
  const int margin = platform::scaled(kPictureMargin, dpi);
  const int width = size.width - 2 * margin;
  const int legend = draw_legend(canvas, {margin, margin / 2, width, 0}, legend_of(of, palette), palette);
  const int top = margin / 2 + legend + platform::scaled(5, dpi);
  const CellGrid grid = grid_for(of.map, {margin, top, width, size.height - top - margin}, dpi);
  std::vector<PixelColumn> cells(static_cast<std::size_t>(grid.cells));
  resample(of.map, cells);
  for (std::int64_t i = 0; i < grid.cells; ++i) {
    const RateColumn& facts = cells[static_cast<std::size_t>(i)].facts;
    const Rect place = place_of_cell(grid, i);
    const bool touched = facts.transfers > 0;
    fill(canvas, place, touched ? palette.classes.at(static_cast<std::size_t>(facts.worst)) : palette.untouched);
    if (touched && facts.worst == LatencyClass::error) draw_cell_cross(canvas, place, palette);
  }
  return grid;
}
