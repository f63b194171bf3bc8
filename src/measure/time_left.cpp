#include "measure/time_left.h"

void note_pace(double at, std::int64_t done, Pace* pace) {
  constexpr double kBetween = 1.0;
  pace->now = {at, done};
  const std::size_t newest = (pace->next + Pace::kSamples - 1) % Pace::kSamples;
  if (pace->kept > 0 && at - pace->samples.at(newest).at < kBetween) return;
  pace->samples.at(pace->next) = pace->now;
  pace->next = (pace->next + 1) % Pace::kSamples;
  if (pace->kept < Pace::kSamples) ++pace->kept;
}

double seconds_left(const Pace& pace, std::int64_t work) {
  if (work <= pace.now.done && work > 0) return 0.0;
  // The oldest sample of the half minute; where one transfer took longer than that, the one before it.
  Pace::Sample from = pace.now;
  for (std::size_t back = 1; back <= pace.kept; ++back) {
    const Pace::Sample& sample = pace.samples.at((pace.next + Pace::kSamples - back) % Pace::kSamples);
    const bool within = pace.now.at - sample.at <= Pace::kSeconds;
    if (within || from.at >= pace.now.at) from = sample;
    if (!within) break;
  }
  const double seconds = pace.now.at - from.at;
  const auto done = static_cast<double>(pace.now.done - from.done);
  if (seconds <= 0.0 || done <= 0.0) return -1.0;
  return static_cast<double>(work - pace.now.done) * seconds / done;
}
