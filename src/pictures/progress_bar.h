#pragma once

#include <string>

#include "platform/window.h"

/// What the bar says: "reading 42%" and "1:05 left" while a command runs, "finished" or "stopped at 42%" after it.
struct ProgressWords {
  std::string what;
  std::string left;
};
ProgressWords progress_words();

/// The bar over the chosen range, its words above it.
extern const platform::Picture kProgressPicture;

/// The same for the taskbar.
platform::Share progress_share();
