#pragma once

#include <string>

#include "platform/window.h"

/// The line above the panel: the verdict on the selected drive, its word on a ground of its colour, with what decided
/// it; during a run the temperature.

struct HealthWords {
  std::string grade;  // empty before there is a verdict
  std::string text;
};
HealthWords health_words();

extern const platform::Picture kHealthPicture;
