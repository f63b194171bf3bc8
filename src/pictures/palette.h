#pragma once

#include <array>

#include "measure/findings.h"
#include "measure/latency.h"
#include "platform/canvas.h"

/// The colours of the pictures. Those that tell data apart are Okabe and Ito's, which stay apart for every kind of
/// colour vision (Color Universal Design, 2008); in high contrast all are the system's, and shape and lightness tell
/// apart.
struct Palette {
  platform::Color paper;  // behind the data
  platform::Color face;   // behind the picture
  platform::Color text;
  platform::Color faint;  // of text that is not about the data
  platform::Color grid;
  platform::Color frame;
  platform::Color average;
  platform::Color band;
  platform::Color limit;
  platform::Color slow;
  platform::Color error;
  platform::Color untouched;                               // a cell of the block map that nothing went to
  std::array<platform::Color, kLatencyClasses> classes{};  // its other cells
};

/// The ground on which a verdict's word stands, and the word's own colour.
struct VerdictColors {
  platform::Color ground;
  platform::Color text;
};
VerdictColors verdict_colors(Grade grade, const platform::SystemColors& system);

Palette palette_of(const platform::SystemColors& system);
