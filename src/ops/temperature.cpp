#include "ops/temperature.h"

#include <algorithm>
#include <string>
#include <utility>

#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "health/ask.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "ops/operations.h"
#include "platform/clock.h"
#include "platform/window.h"

namespace {

constexpr int kCooler = 5;         // degrees, before a paused run goes on
constexpr double kAtOnce = 0.05;   // seconds, in which a drive answers without making a transfer wait
constexpr double kLookAgain = 10;  // seconds, while the run pauses

/// The temperature, which becomes the run's last sample. A drive that does not answer at once is not asked again.
std::optional<int> look() {
  const double asked_at = platform::steady_seconds();
  const std::optional<int> celsius = ask_celsius(form1.SelectedDrive);
  TemperatureTrack& track = run_findings.temperature;
  track.tells = celsius && platform::steady_seconds() - asked_at <= kAtOnce;
  if (!track.tells) {
    between_transfers.temperature.work = nullptr;
    return std::nullopt;
  }
  if (track.samples.empty()) track.began = asked_at;
  if (track.samples.size() < TemperatureTrack::kMostSamples)
    track.samples.push_back({asked_at - track.began, *celsius});
  track.highest = std::max(track.highest, celsius);
  return celsius;
}

/// Waits, with the window and Control-C alive.
void wait_while_paused(const std::string& status) {
  constexpr int kSteps = 100;
  for (int step = 0; step < kSteps && !form1.MyCancel; ++step) {
    show_progress_line(status);
    platform::pump_events();
    platform::wait(kLookAgain / kSteps, false);
  }
}

void pause_until(int cool_enough, int celsius) {
  TemperatureTrack& track = run_findings.temperature;
  const double began = platform::steady_seconds();
  ++track.pauses;
  for (std::optional<int> now = celsius; now && *now > cool_enough && !form1.MyCancel; now = look()) {
    const std::string status =
        "Paused at " + std::to_string(*now) + " degrees Celsius, goes on at " + std::to_string(cool_enough);
    form1.TxtStatus.set_text(status);
    wait_while_paused(status);
  }
  track.paused_seconds += platform::steady_seconds() - began;
}

/// True if transfers failed since the last look. A failing drive gets no requests beyond those of the run; a limit on
/// the temperature is one that the user asked for.
bool leaves_drive_alone() {
  TemperatureTrack& track = run_findings.temperature;
  const std::int64_t failed = measure.failed + verify_run.failed;
  return !asked.max_celsius && std::exchange(track.failed_before, failed) != failed;
}

void look_between_transfers() {
  if (leaves_drive_alone()) return;
  const std::optional<int> celsius = look();
  if (celsius && asked.max_celsius && *celsius >= *asked.max_celsius)
    pause_until(*asked.max_celsius - kCooler, *celsius);
}

}  // namespace

void begin_temperature_watch() {
  between_transfers.temperature = {.work = look_between_transfers};
  if (!look() && asked.max_celsius) {
    tell_on_stderr("/MAXTEMP does nothing: the drive does not tell its temperature without disturbing transfers.");
  }
}

void end_temperature_watch() {
  between_transfers.temperature = {};
}
