#pragma once

#include "platform/window.h"

namespace win32 {

/// The window's button on the taskbar shows how far the running command is. Nothing on a system without a taskbar.
void show_on_taskbar(const platform::Share& share);

/// The button shows no progress any more.
void clear_taskbar();

}  // namespace win32
