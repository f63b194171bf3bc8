#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "measure/transfer_record.h"

/// How long the transfers around one took for their length, so that a stall is told from a slow disk: the median of
/// the neighbours before and behind it, of its own phase and of those that succeeded.
struct UsualTime {
  static constexpr std::int64_t kEachSide = 7;
  static constexpr std::int64_t kAtEnd = 4;   // on the side that has any, at the run's ends
  static constexpr std::int64_t kFewest = 3;  // neighbours, the transfer itself included; below it nothing is usual
  static constexpr std::int64_t kRemembered = 128;

  struct Times {
    std::array<double, kRemembered> seconds{};  // a sector; the n-th one stands at n % kRemembered
    std::int64_t count = 0;
  };
  std::array<Times, kPhases> of_phase{};
};

/// Adds a transfer that succeeded. Gives its number in its phase, from 0 on.
std::int64_t add_usual(const Transfer& transfer, UsualTime* usual);

/// True when all the neighbours of that number are known that there can be.
bool is_surrounded(Phase phase, std::int64_t number, const UsualTime& usual);

/// The seconds usual for `transfer` where it is, or would be, the one of that number; nothing while too few are known.
std::optional<double> usual_seconds(const Transfer& transfer, std::int64_t number, const UsualTime& usual);

/// The same behind the last one.
std::optional<double> usual_seconds(const Transfer& transfer, const UsualTime& usual);
