#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "pictures/views.h"
#include "platform/window.h"

enum class PanelView : std::uint8_t { rate_graph, block_map };

/// The panel: one picture of the last run, in one of two views. It has a place of its own beside the commands or above
/// the status; in a window too small for that it shares the report's (form1.report_in_front).
struct Panel {
  PanelView view = PanelView::rate_graph;
  platform::Field report_tab;
  platform::Field graph_tab{platform::Field::switched_on()};
  platform::Field map_tab;
  std::optional<platform::Point> pointer;  // where the mouse is, in the picture
  platform::Rect plot;                     // where the last paint put the range of the graph,
  std::vector<PlacedMark> marks;           // its marks,
  CellGrid grid;                           // and the cells of the map
  bool has_own_place = true;               // as the window was last laid out
  std::uint64_t changes = 0;               // of the view and the pointer
};

inline Panel panel;

/// Which view is shown, in front of the report where it shares that one's place.
void show_panel_view(PanelView view);
void report_tab_click();
void graph_tab_click();
void map_tab_click();

/// Notes whether the panel has a place of its own, and marks the tabs. True where its picture stands in the report's
/// place.
bool panel_in_front(bool has_own_place);

/// The control's table entry: painting, hovering, and the double click that puts an LBA into TxtStartLBA, on a mark its
/// sectors into TxtNoSecs too.
extern const platform::Picture kPanelPicture;
