#include "pictures/health_line.h"

#include <algorithm>
#include <functional>

#include "form/form1.h"
#include "measure/findings.h"
#include "pictures/palette.h"
#include "platform/geometry.h"

namespace {

using platform::Align;
using platform::Canvas;
using platform::Rect;

bool is_about_selected_drive() {
  return run_findings.drive != kNoDrive && run_findings.drive == form1.SelectedDrive;
}

std::string description() {
  const HealthWords words = health_words();
  return "Health: " + (words.grade.empty() ? "" : words.grade + ": ") + words.text;
}

/// As much of `text` as fits, and three points where that is not all.
std::string fitting(const Canvas& canvas, std::string text, int width) {
  if (text_size(canvas, text).width <= width) return text;
  while (!text.empty() && text_size(canvas, text + "...").width > width) text.pop_back();
  return text + "...";
}

void paint(Canvas* canvas) {
  const platform::SystemColors system = colors_of(*canvas);
  const Palette palette = palette_of(system);
  const platform::Size size = size_of(*canvas);
  const int inset = platform::scaled(8, dpi_of(*canvas));
  const HealthWords words = health_words();
  fill(canvas, {0, 0, size.width, size.height}, palette.face);
  int left = 0;
  if (!words.grade.empty()) {
    const int width = text_size(*canvas, words.grade).width + 2 * inset;
    const VerdictColors colors = verdict_colors(run_findings.verdict.grade, system);
    fill(canvas, {0, 0, width, size.height}, colors.ground);
    draw_text(canvas, {0, 0, width, size.height}, words.grade, Align::center, colors.text);
    left = width + inset;
  }
  const int room = std::max(size.width - left, 0);
  draw_text(canvas, {left, 0, room, size.height}, fitting(*canvas, words.text, room), Align::left, palette.text);
}

std::uint64_t revision() {
  return std::hash<std::string>{}(description());
}

}  // namespace

const platform::Picture kHealthPicture = {paint, revision, description, nullptr, nullptr};

HealthWords health_words() {
  const std::string drive = "Drive " + std::to_string(form1.SelectedDrive);
  if (is_about_selected_drive() && run_findings.judged)
    return {grade_name(run_findings.verdict.grade), why(run_findings.verdict)};
  if (!is_about_selected_drive() || !form1.command_running)
    return {{}, drive + ": its health is read with the next command."};
  const std::string temperature = temperature_text(run_findings.temperature);
  return {{}, drive + ": " + (temperature.empty() ? "" : temperature + ", ") + "judged at the end of the command."};
}
