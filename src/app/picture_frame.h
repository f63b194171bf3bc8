#pragma once

#include <string>
#include <vector>

#include "platform/canvas.h"

/// What the pictures have in common.

inline constexpr int kPictureMargin = 10;  // pixels at 96 dpi

/// The paper and its edge.
void draw_paper(platform::Canvas* canvas);

/// A calm line in the middle of a picture that has nothing to show yet.
void draw_hint(platform::Canvas* canvas, const std::string& hint);

/// A small box of lines beside `at`, inside the canvas.
void draw_note(platform::Canvas* canvas, platform::Point at, const std::vector<std::string>& lines);
