#pragma once

#include <cstddef>
#include <span>

#include "platform/window.h"

/// The main window's controls in tab order; the layout (layout.h) places them by this index.
enum class ControlId : std::size_t {
  Option1,
  Option2,
  Option3,
  Option4,
  Option5,
  Option6,
  Option7,
  Option8,
  LblStart,
  TxtStartLBA,
  LblNoSectors,
  TxtNoSecs,
  LblCurrent,
  TxtCurrent,
  progress_bar,
  CmdRead,
  CmdRndRD,
  CmdFind,
  CmdRnd,
  CmdSlowRate,
  cmdCancel,
  CmdHelp,
  CmdExit,
  Frame1,
  CmdDisplay,
  cmdWriteBuffer,
  LblPattern,
  TxtPattern,
  CmdFillBuffer,
  CmdWrite,
  health_line,
  more_button,
  report_tab,
  graph_tab,
  map_tab,
  picture,
  TxtStatus,
  Text1,
  count
};

inline constexpr std::size_t kControlCount = static_cast<std::size_t>(ControlId::count);

/// The table from which the window is made.
platform::WindowTable main_window();

/// Client sizes in pixels at 96 dots per inch. The least one is what the controls need, the whole one what the panel
/// needs for a place of its own.
inline constexpr platform::Size kFirstSize{1240, 780};
inline constexpr platform::Size kLeastSize{760, 480};
inline constexpr platform::Size kWholeSize{760, 680};

/// The layout's arrangements: what stands in the report's place where the panel has none of its own.
inline constexpr int kReportInFront = 0;
inline constexpr int kPictureInFront = 1;

/// Places every control: `places` has one rectangle per control, in its order, in pixels of a client area
/// of `client` pixels at `dpi` dots per inch. Every place has its fixed size, the memo's takes all that the others
/// leave. The panel stands beside the commands where the window is wide enough, else above the status where it is high
/// enough, else in the memo's place, with a tab for each of the three; there `arrangement` says which of the two is
/// shown, and the other's place is empty. A client area too small for the scaling is laid out at the scaling that it
/// holds (platform/geometry.h).
void place_controls(platform::Size client, int dpi, int arrangement, std::span<platform::Rect> places);

/// True where the panel takes nothing of the memo's place.
bool panel_has_own_place(platform::Size client, int dpi);
