#pragma once

// The system's headers, in the order that they need.
// clang-format off
#include <windows.h>

#include <commctrl.h>
#include <objbase.h>
#include <oleauto.h>
// clang-format on
