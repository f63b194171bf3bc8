#include "form/progress_line.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "platform/clock.h"
#include "platform/console.h"

namespace {

constexpr std::uint64_t kTerminalPause = 100;  // milliseconds
constexpr std::uint64_t kPlainPause = 10'000;

bool wanted() {
  return in_batch() && !asked.quiet;
}

/// How far the run is, as "  [42%, 1:05 left, reading, 41 C]"; what is not known is left out.
std::string how_far_text() {
  if (measure.plan.kind == RunKind::none) return {};
  if (run_findings.pinpoint.running) {
    return "  [" + std::to_string(static_cast<int>(share_of(run_findings.pinpoint) * 100.0)) + "%, pinpointing]";
  }
  const HowFar how = how_far(measure);
  const std::string left = how.seconds_left < 0.0 ? std::string() : duration_text(how.seconds_left) + " left, ";
  const std::string temperature = temperature_text(run_findings.temperature);
  return "  [" + std::to_string(static_cast<int>(how.share * 100.0)) + "%, " + left + phase_text(how.phase) +
         (temperature.empty() ? "" : ", ") + temperature + "]";
}

/// The status and how far the run is. On a terminal the status gives way, since a line that wraps cannot be rewritten.
std::string line_text(const std::string& instead) {
  constexpr std::size_t kTerminalWidth = 79;
  const std::string how = how_far_text();
  std::string status = instead.empty() ? form1.TxtStatus.text() : instead;
  if (progress_line.on_terminal && status.size() + how.size() > kTerminalWidth)
    status.resize(kTerminalWidth - how.size());
  return status + how;
}

}  // namespace

void begin_progress_line() {
  if (!wanted()) return;
  progress_line = {};
  progress_line.on_terminal = platform::err_is_terminal();
  progress_line.due = platform::coarse_milliseconds() + (progress_line.on_terminal ? kTerminalPause : kPlainPause);
}

bool show_progress_line() {
  return show_progress_line({});
}

bool show_progress_line(const std::string& instead) {
  if (!wanted()) return false;
  const std::uint64_t now = platform::coarse_milliseconds();
  if (now < progress_line.due) return false;
  progress_line.due = now + (progress_line.on_terminal ? kTerminalPause : kPlainPause);
  const std::string status = line_text(instead);
  if (!progress_line.on_terminal) {
    platform::write_err(status + "\r\n");
    return true;
  }
  std::string shown = "\r" + status;
  shown.resize(std::max(shown.size(), progress_line.width + 1), ' ');
  progress_line.width = status.size();
  platform::write_err(shown);
  return true;
}

void clear_progress_line() {
  if (progress_line.width == 0) return;
  platform::write_err("\r" + std::string(progress_line.width, ' ') + "\r");
  progress_line = {.due = progress_line.due, .on_terminal = progress_line.on_terminal};
}

void end_progress_line() {
  if (progress_line.width == 0) return;
  clear_progress_line();
  platform::write_err(form1.TxtStatus.text() + "\r\n");
}
