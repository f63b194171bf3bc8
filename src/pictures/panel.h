#pragma once

#include <cstdint>
#include <optional>
#include <vector>

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
  std::vector<PlacedMark> marks;           // its marks,
  CellGrid grid;                           // and the cells of the map
  std::uint64_t changes = 0;               // of the view and the pointer
};

inline Panel panel;

/// Which view is shown.
void show_panel_view(PanelView view);
void graph_tab_click();
void map_tab_click();

/// The control's table entry: painting, hovering, and the double click that puts an LBA into TxtStartLBA, on a mark its
/// sectors into TxtNoSecs too.
extern const platform::Picture kPanelPicture;
