#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "measure/rate_map.h"
#include "pictures/views.h"
#include "platform/window.h"

enum class PanelView : std::uint8_t { rate_graph, block_map };

/// The panel beside the commands: one picture of the last run, in one of two views.
struct Panel {
  PanelView view = PanelView::rate_graph;
  platform::Field graph_tab{platform::Field::switched_on()};
  platform::Field map_tab;
  std::optional<platform::Point> pointer;  // where the mouse is, in the picture
  platform::Rect plot;                     // where the last paint put the range of the graph,
  CellGrid grid;                           // and the cells of the map
  std::uint64_t changes = 0;               // of the view and the pointer
};

inline Panel panel;

/// Which view is shown.
void show_panel_view(PanelView view);
void graph_tab_click();
void map_tab_click();

/// The stretch of the disk at `point` of the picture; none beside it or without a run.
std::optional<PixelColumn> stretch_at(platform::Point point);

/// What is known of a stretch, in lines: its LBAs, its rates in MB/s, its longest transfer in milliseconds.
std::vector<std::string> stretch_lines(const PixelColumn& stretch);

/// The control's table entry: painting, hovering, and the double click that puts an LBA into TxtStartLBA.
extern const platform::Picture kPanelPicture;
