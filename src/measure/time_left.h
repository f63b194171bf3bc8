#pragma once

#include <array>
#include <cstdint>

/// How much work was done when, over the last half minute: a fixed ring of one sample a second.
struct Pace {
  static constexpr double kSeconds = 30.0;
  static constexpr std::size_t kSamples = 31;

  struct Sample {
    double at = 0.0;  // seconds
    std::int64_t done = 0;
  };
  std::array<Sample, kSamples> samples{};
  std::size_t next = 0;
  std::size_t kept = 0;
  Sample now;
};

/// Notes that `done` was done `at` seconds after the start; a sample is kept once a second.
void note_pace(double at, std::int64_t done, Pace* pace);

/// Seconds left for what is missing to `work`, at the pace of the last 30 seconds; -1 while that is unknown.
double seconds_left(const Pace& pace, std::int64_t work);
