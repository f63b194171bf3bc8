#pragma once

// The system's headers, in the order that they need.
// clang-format off
#include <windows.h>

#include <commctrl.h>
#include <objbase.h>
#include <oleauto.h>
// clang-format on

namespace win32 {

/// A function of user32 that older systems lack; null there.
template <typename Function>
Function user_function(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleA("user32"), name)));
}

}  // namespace win32
