#pragma once

#include "platform/win32/win_api.h"

namespace win32 {

/// A function of user32 that older systems lack; null there.
template <typename Function>
Function user_function(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleA("user32"), name)));
}

}  // namespace win32
