#pragma once

#include <string>

#include "platform/window.h"

/// What the user is told while a call to the drive does not come back.

/// The line in place of the status; empty where the status says enough. From the second second on it tells how long the
/// call has been waited for; the bar and a batch's progress line, when that is due, tell it too.
std::string tell_waiting(const platform::Waiting& waiting);

/// What a box says when the program is to end and has to wait for the call.
std::string leaving_text(const platform::Waiting& waiting);
