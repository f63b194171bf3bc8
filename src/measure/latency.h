#pragma once

#include <array>
#include <cstdint>

#include "measure/transfer_record.h"

/// The classes that surface scanners use: a transfer took less than 3, 10, 50, 150 or 500 ms beyond the usual time for
/// its length, longer, or it failed. So neither its size nor the disk's pace decides its class, and one late sector in
/// 10 MiB is seen.
enum class LatencyClass : std::uint8_t { under_3, under_10, under_50, under_150, under_500, longer, error };

inline constexpr std::size_t kLatencyClasses = 7;
inline constexpr std::array<double, 5> kClassLimits = {3.0, 10.0, 50.0, 150.0, 500.0};  // milliseconds

/// The class in words, as "< 3 ms", ">= 500 ms", "error".
const char* class_text(LatencyClass which);

/// By the transfer's time beyond the usual one.
LatencyClass class_of(const Transfer& transfer);

/// True for a transfer that succeeded at least 150 ms late.
bool is_stalled(const Transfer& transfer);

/// The time beyond the usual one of a transfer without a neighbourhood: all of it for at most 256 sectors, of a larger
/// one the time that 256 of its sectors took.
double beyond_nothing(const Transfer& transfer);

/// How long transfers took, in a fixed number of buckets: 64 to every doubling, so a percentile is off by less than
/// 1 %. Failed transfers are in their class and among the slowest, not in the percentiles.
struct Latency {
  static constexpr std::size_t kPerDoubling = 64;
  static constexpr std::size_t kBuckets = kPerDoubling * 41;  // of nanoseconds, up to 2^46, some 19 hours
  static constexpr std::size_t kSlowest = 10;

  std::array<std::int64_t, kLatencyClasses> classes{};
  std::array<std::uint32_t, kBuckets> buckets{};
  std::int64_t timed = 0;                    // transfers in the buckets
  std::array<Transfer, kSlowest> slowest{};  // longest first
  std::size_t slowest_kept = 0;
};

void add_latency(const Transfer& transfer, Latency* latency);

/// The same transfer's class, once it is known.
void add_latency_class(const Transfer& transfer, LatencyClass which, Latency* latency);

/// The milliseconds that `percent` (0 to 100) of the transfers did not exceed; 0 without transfers.
double percentile(const Latency& latency, double percent);
