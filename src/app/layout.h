#pragma once

#include <span>

#include "platform/window.h"

/// Client sizes in pixels at 96 dots per inch.
inline constexpr platform::Size kFirstSize{1000, 760};
inline constexpr platform::Size kLeastSize{784, 561};

/// Places every control of controls.h: `places` has one rectangle per control, in its order, in pixels of a client area
/// of `client` pixels at `dpi` dots per inch. A memo's share is all that the others leave.
void place_controls(platform::Size client, int dpi, std::span<platform::Rect> places);
