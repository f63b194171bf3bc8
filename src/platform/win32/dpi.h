#pragma once

#include "platform/win32/win_api.h"
#include "platform/window.h"

/// Scaling per monitor where the system has it (Windows 10 1607 and later), else the system's one scaling.
namespace win32 {

/// The scaling of the monitor that the window is on, enlarged by the text size that the user has set.
int text_dpi(HWND window);

/// The face of the system's message boxes in 9 points of `dpi`; the caller deletes it.
HFONT make_gui_font(HWND window, int dpi);

/// A fixed-pitch face in 10 points of `dpi`; the caller deletes it.
HFONT make_fixed_font(int dpi);

/// The size of a window around a client area of `client` pixels.
SIZE window_size(HWND window, platform::Size client);

/// The work area of the monitor that the window is on.
RECT work_area(HWND window);

}  // namespace win32
