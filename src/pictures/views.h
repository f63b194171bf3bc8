#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "measure/graph_marks.h"
#include "measure/measure.h"
#include "platform/canvas.h"

/// The panel's two views of a run.

/// Cells from left to right in rows from the top, each a stretch of the run's range.
struct CellGrid {
  platform::Point first;  // the upper left corner
  int pitch = 0;          // from cell to cell, pixels
  int size = 0;           // of a cell, pixels
  std::int64_t in_row = 0;
  std::int64_t cells = 0;
};

platform::Rect place_of_cell(const CellGrid& grid, std::int64_t cell);

/// The cell at `point`; none beside the cells.
std::optional<std::int64_t> cell_at(const CellGrid& grid, platform::Point point);

/// Draws the run's range as cells, each in the colour of the slowest class of transfers in it, errors crossed; the
/// legend counts the transfers of each class. Gives where the cells are; none where there is no run or no room.
CellGrid draw_block_map(const Measure& of, platform::Canvas* canvas);

/// A mark, and where it is drawn.
struct PlacedMark {
  GraphMark mark;
  platform::Rect place;
};

struct GraphView {
  platform::Rect plot;            // where the range lies on the canvas
  std::vector<PlacedMark> marks;  // the topmost last
};

/// Draws the rates over the run's range: the average as a line within the band of lowest to highest, the slow limit
/// (MB/s) dashed, slow transfers and errors as marks, random tests as points. Gives what is where; empty where there is
/// no run or no room.
GraphView draw_rate_graph(const Measure& of, double slow_limit, platform::Canvas* canvas);
