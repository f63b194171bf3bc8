#pragma once

#include <string>

#include "platform/window.h"

struct ProgressBar {
  int waiting = 0;  // whole seconds for which a call has been waited for, from 1 on
};

inline ProgressBar progress_bar;

/// What the bar says: "reading 42%, 41 C" and "1:05 left", or "waiting 12 s", while a command runs, "finished" or
/// "stopped at 42%" after it.
struct ProgressWords {
  std::string what;
  std::string left;
};
ProgressWords progress_words();

/// The bar over the chosen range, its words above it.
extern const platform::Picture kProgressPicture;

/// The same for the taskbar.
platform::Share progress_share();
