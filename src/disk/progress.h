#pragma once

#include <cstdint>
#include <string>

#include "platform/units.h"

inline constexpr double kDefaultSlowRate = 10.0;
inline constexpr double kLowRateStart = 999999.0;

/// Transfer rates of the running operation, in MB/s, and the limit below which a transfer is slow.
struct Progress {
  double SlowRate = kDefaultSlowRate;
  bool AutoSlowRate = false;  // the limit follows half the average
  double XferStart = 0.0;     // time of day in seconds before and after the last transfer
  double XferEnd = 0.0;
  bool in_a_row = false;  // XferEnd is also the start of a transfer that is made now
  double HighRate = 0.0;
  double LowRate = kLowRateStart;
  double MaxRateJump = 0.0;  // largest difference between a transfer's rate and HighRate
  std::int64_t average_rate = 0;
  std::int64_t SlowXfers = 0;
};

inline Progress progress;

/// Sets the statistics to their start values; the slow limit too while it is AUTO, a number that the user set stays.
void clear_progress();

/// True for a transfer that the report calls slow: long enough to time, at least 200 sectors, below the limit.
bool is_slow(std::int64_t sectors, double duration);

/// Updates rates, slow transfers and the status line after a transfer of `sectors` sectors that began at `lba`;
/// progress.XferStart and XferEnd say when.
void Display_Progress(std::int64_t sectors, std::int64_t lba);

/// Takes an answer to the question for the slow limit: AUTO, or a leading number in MB/s. 0 or no number keeps the
/// limit and ends AUTO; an empty answer changes nothing.
void set_slow_rate(const std::string& answer);

/// Asks for the slow limit.
void ask_slow_rate();
