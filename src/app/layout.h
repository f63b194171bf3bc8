#pragma once

#include <span>

#include "platform/window.h"

/// Client sizes in pixels at 96 dots per inch. The least one is what the layout needs.
inline constexpr platform::Size kFirstSize{1000, 760};
inline constexpr platform::Size kLeastSize{760, 480};

/// Places every control of controls.h: `places` has one rectangle per control, in its order, in pixels of a client area
/// of `client` pixels at `dpi` dots per inch. Every place has its fixed size, the memo's takes all that the others
/// leave. A client area too small for the scaling is laid out at the scaling that it holds (platform/scale.h).
void place_controls(platform::Size client, int dpi, std::span<platform::Rect> places);
