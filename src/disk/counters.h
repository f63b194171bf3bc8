#pragma once

#include <cstdint>

/// What every operation counts. Times are seconds since midnight.
struct Counters {
  std::int64_t TotalErrors = 0;   // failed transfers
  std::int64_t TotalRErrors = 0;  // failed reads
  std::int64_t TotalWErrors = 0;  // failed writes
  std::int64_t TotalCErrors = 0;  // visits of a write test whose read-back differed; chunks that are not the pattern
  std::int64_t Sectors_Done = 0;  // sectors transferred by the running operation, failed ones included
  std::int64_t No_Secs = 0;       // sectors that the operation is to transfer; per visit in a random test
  double OpStartTime = 0.0;
  double OpEndTime = 0.0;
};

inline Counters counters;

/// The seconds between the operation's start and end as printed: the difference of two single-precision times of day,
/// negative across midnight (docs/oddities.md, 4).
inline float elapsed_seconds() {
  return static_cast<float>(counters.OpEndTime) - static_cast<float>(counters.OpStartTime);
}
