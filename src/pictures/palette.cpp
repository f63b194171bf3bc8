#include "pictures/palette.h"

#include <cmath>

namespace {

using platform::Color;

/// `share` (0 to 1) of `over` on `under`.
Color blend(Color under, Color over, double share) {
  const auto mixed = [share](std::uint8_t from, std::uint8_t to) {
    return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
  };
  return {mixed(under.red, over.red), mixed(under.green, over.green), mixed(under.blue, over.blue)};
}

constexpr Color kBlue{0, 114, 178};
constexpr Color kSkyBlue{86, 180, 233};
constexpr Color kYellow{240, 228, 66};
constexpr Color kOrange{230, 159, 0};
constexpr Color kVermilion{213, 94, 0};
constexpr Color kBlack{0, 0, 0};

Palette high_contrast(const platform::SystemColors& system) {
  Palette palette{system.window, system.face, system.text,      system.text,   {}, system.text, system.text, {},
                  system.text,   system.text, system.highlight, system.window, {}};
  constexpr double kGrid = 0.3;
  constexpr double kBand = 0.4;
  palette.grid = blend(system.window, system.text, kGrid);
  palette.band = blend(system.window, system.text, kBand);
  for (std::size_t i = 0; i < kLatencyClasses; ++i) {
    palette.classes.at(i) =
        blend(system.window, system.text, static_cast<double>(i + 1) / static_cast<double>(kLatencyClasses));
  }
  return palette;
}

}  // namespace

Palette palette_of(const platform::SystemColors& system) {
  if (system.high_contrast) return high_contrast(system);
  Palette palette;
  const Color paper = system.window;
  palette.paper = paper;
  palette.face = system.face;
  palette.text = system.text;
  palette.faint = blend(paper, system.text, 0.6);
  palette.grid = blend(paper, system.text, 0.09);
  palette.frame = blend(paper, system.text, 0.3);
  palette.average = kBlue;
  palette.band = blend(paper, kSkyBlue, 0.45);
  palette.limit = blend(paper, system.text, 0.5);
  palette.slow = kVermilion;
  palette.error = kBlack;
  palette.untouched = blend(paper, system.text, 0.06);
  palette.classes = {blend(paper, kSkyBlue, 0.35), kSkyBlue, kBlue, kYellow, kOrange, kVermilion, kBlack};
  return palette;
}

VerdictColors verdict_colors(Grade grade, const platform::SystemColors& system) {
  if (system.high_contrast) return {system.text, system.window};
  constexpr Color kWhite{255, 255, 255};
  constexpr Color kGreen{0, 158, 115};
  constexpr Color kGrey{200, 200, 200};
  switch (grade) {
    case Grade::failing:
      return {kBlack, kWhite};
    case Grade::worse:
      return {kVermilion, kBlack};
    case Grade::doubtful:
      return {kYellow, kBlack};
    case Grade::note:
      return {kSkyBlue, kBlack};
    case Grade::good:
      return {kGreen, kBlack};
    case Grade::no_data:
      break;
  }
  return {kGrey, kBlack};
}
