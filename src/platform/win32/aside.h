#pragma once

#include "platform/exchange.h"

namespace win32 {

/// Tells what learn_aside() has learned. On the operations' thread.
void tell_learned(const platform::Press& press);

}  // namespace win32
