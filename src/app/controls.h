#pragma once

#include <cstddef>

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
