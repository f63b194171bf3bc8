#pragma once

#include "platform/window.h"

namespace platform {

/// The dots per inch at which a window is drawn: `dpi`, or less where a client area of `client` pixels cannot hold
/// `least` (pixels at 96 dpi), so that on a small screen with a large scaling nothing is cut. More than 96 only as far
/// as the client area holds `whole`: there a smaller scaling shows what a larger one would leave out. At least 1.
int fitting_dpi(Size client, Size least, Size whole, int dpi);

/// `pixels` at 96 dpi, in pixels at `dpi`, rounded.
int scaled(int pixels, int dpi);

}  // namespace platform
