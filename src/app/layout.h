#pragma once

#include <span>

#include "platform/window.h"

/// Client sizes in pixels at 96 dots per inch. The least one is what the controls need, the whole one what the panel
/// needs too.
inline constexpr platform::Size kFirstSize{1240, 780};
inline constexpr platform::Size kLeastSize{760, 480};
inline constexpr platform::Size kWholeSize{760, 680};

/// Places every control of controls.h: `places` has one rectangle per control, in its order, in pixels of a client area
/// of `client` pixels at `dpi` dots per inch. Every place has its fixed size, the memo's takes all that the others
/// leave. The panel stands beside the commands where the window is wide enough, else above the status where it is high
/// enough, else nowhere: its places are empty. A client area too small for the scaling is laid out at the scaling that
/// it holds (platform/scale.h).
void place_controls(platform::Size client, int dpi, std::span<platform::Rect> places);
