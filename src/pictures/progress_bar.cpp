#include "pictures/progress_bar.h"

#include <algorithm>
#include <functional>

#include "form/number_text.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "pictures/palette.h"
#include "platform/geometry.h"

namespace {

using platform::Canvas;
using platform::Rect;

constexpr int kBar = 10;  // pixels at 96 dpi
constexpr int kPercent = 100;

/// Of the run, or of the read-back after it.
HowFar how_far_shown() {
  return run_findings.read_back.running ? how_far(run_findings.read_back) : how_far(measure);
}

/// Of these, or of the search after the run.
double share_shown() {
  return run_findings.pinpoint.running ? share_of(run_findings.pinpoint) : how_far_shown().share;
}

std::string description() {
  const ProgressWords words = progress_words();
  if (words.what.empty()) return "Progress";
  return "Progress: " + words.what + (words.left.empty() ? "" : ", " + words.left);
}

void paint(Canvas* canvas) {
  const Palette palette = palette_of(colors_of(*canvas));
  const platform::Size size = size_of(*canvas);
  const int dpi = dpi_of(*canvas);
  const int edge = std::max(platform::scaled(1, dpi), 1);
  const int top = size.height - platform::scaled(kBar, dpi);
  fill(canvas, {0, 0, size.width, size.height}, palette.face);
  const ProgressWords words = progress_words();
  const Rect line{0, 0, size.width, top - platform::scaled(3, dpi)};
  draw_text(canvas, line, words.what, platform::Align::left, palette.text);
  draw_text(canvas, line, words.left, platform::Align::right, palette.text);
  fill(canvas, {0, top, size.width, size.height - top}, palette.frame);
  const Rect inner{edge, top + edge, size.width - 2 * edge, size.height - top - 2 * edge};
  fill(canvas, inner, palette.paper);
  const int done = static_cast<int>(share_shown() * inner.width);
  if (done > 0) fill(canvas, {inner.x, inner.y, done, inner.height}, palette.average);
}

std::uint64_t revision() {
  constexpr double kSteps = 10000.0;
  const auto share = static_cast<std::uint64_t>(share_shown() * kSteps);
  return std::hash<std::string>{}(description()) + share;
}

}  // namespace

const platform::Picture kProgressPicture = {paint, revision, description, nullptr, nullptr};

ProgressWords progress_words() {
  if (measure.plan.kind == RunKind::none) return {};
  if (const Pinpoint& pinpoint = run_findings.pinpoint; pinpoint.running) {
    const std::string waited = progress_bar.waiting > 0 ? "waiting " + std::to_string(progress_bar.waiting) + " s" : "";
    return {"pinpointing " + std::to_string(pinpoint.looked_at + 1) + " of " + std::to_string(pinpoint.suspects),
            waited};
  }
  const HowFar how = how_far_shown();
  const std::string percent = std::to_string(static_cast<int>(how.share * kPercent)) + "%";
  if (!measure.running && !run_findings.read_back.running)
    return {measure.stopped ? "stopped at " + percent : "finished", {}};
  const std::string temperature = temperature_text(run_findings.temperature);
  const std::string what =
      std::string(phase_text(how.phase)) + " " + percent + (temperature.empty() ? "" : ", ") + temperature;
  if (progress_bar.waiting > 0) return {what, "waiting " + std::to_string(progress_bar.waiting) + " s"};
  return {what, how.seconds_left < 0.0 ? std::string() : duration_text(how.seconds_left) + " left"};
}

platform::Share progress_share() {
  if (run_findings.pinpoint.running) return {share_of(run_findings.pinpoint), measure.failed > 0, -1.0};
  const HowFar how = how_far_shown();
  return {how.share, measure.failed > 0, how.seconds_left};
}
