#include "measure/latency.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

constexpr double kNanoseconds = 1e9;
constexpr double kNanosecondsPerMillisecond = 1e6;
constexpr int kMostBits = 46;
constexpr int kSubBits = 6;  // 64 buckets to a doubling
static_assert(Latency::kPerDoubling == 1U << kSubBits);
static_assert(Latency::kBuckets == Latency::kPerDoubling * (kMostBits - kSubBits + 1));

/// Below 64 ns a bucket a nanosecond, above 64 buckets a doubling.
std::size_t bucket_of(double seconds) {
  constexpr std::uint64_t kMost = (std::uint64_t{1} << kMostBits) - 1;
  const double nanoseconds = std::clamp(seconds * kNanoseconds, 0.0, static_cast<double>(kMost));
  const auto whole = static_cast<std::uint64_t>(nanoseconds);
  if (whole < Latency::kPerDoubling) return whole;
  const int shift = static_cast<int>(std::bit_width(whole)) - 1 - kSubBits;
  const auto octave = static_cast<std::size_t>(shift) + 1;
  return octave * Latency::kPerDoubling + ((whole >> shift) & (Latency::kPerDoubling - 1));
}

/// The middle of a bucket, in nanoseconds.
double bucket_middle(std::size_t bucket) {
  if (bucket < Latency::kPerDoubling) return static_cast<double>(bucket);
  const std::size_t shift = bucket / Latency::kPerDoubling - 1;
  const std::uint64_t lowest = (Latency::kPerDoubling + bucket % Latency::kPerDoubling) << shift;
  return static_cast<double>(lowest) + static_cast<double>(std::uint64_t{1} << shift) / 2.0;
}

void keep_slowest(const Transfer& transfer, Latency* latency) {
  const bool full = latency->slowest_kept == Latency::kSlowest;
  if (full && transfer.seconds <= latency->slowest.back().seconds) return;
  if (!full) ++latency->slowest_kept;
  std::size_t place = latency->slowest_kept - 1;
  for (; place > 0 && latency->slowest.at(place - 1).seconds < transfer.seconds; --place) {
    latency->slowest.at(place) = latency->slowest.at(place - 1);
  }
  latency->slowest.at(place) = transfer;
}

}  // namespace

const char* class_text(LatencyClass which) {
  constexpr std::array<const char*, kLatencyClasses> kTexts = {"< 3 ms",   "< 10 ms",   "< 50 ms", "< 150 ms",
                                                               "< 500 ms", ">= 500 ms", "error"};
  return kTexts.at(static_cast<std::size_t>(which));
}

LatencyClass class_of(const Transfer& transfer) {
  if (transfer.error != 0) return LatencyClass::error;
  const double milliseconds = transfer.beyond * 1000.0;
  std::size_t which = 0;
  while (which < kClassLimits.size() && milliseconds >= kClassLimits.at(which)) ++which;
  return static_cast<LatencyClass>(which);
}

bool is_stalled(const Transfer& transfer) {
  return transfer.error == 0 && class_of(transfer) >= LatencyClass::under_500;
}

double beyond_nothing(const Transfer& transfer) {
  constexpr double kFullSize = 256.0;  // sectors
  const auto sectors = static_cast<double>(transfer.sectors);
  return sectors > kFullSize ? transfer.seconds * kFullSize / sectors : transfer.seconds;
}

void add_latency_class(const Transfer& transfer, LatencyClass which, Latency* latency) {
  ++latency->classes.at(static_cast<std::size_t>(which));
  const bool may_be_kept =
      latency->slowest_kept > 0 && transfer.seconds >= latency->slowest.at(latency->slowest_kept - 1).seconds;
  if (!may_be_kept) return;
  for (Transfer& slow : latency->slowest) {
    if (slow.start == transfer.start && slow.lba == transfer.lba) slow.beyond = transfer.beyond;
  }
}

void add_latency(const Transfer& transfer, Latency* latency) {
  keep_slowest(transfer, latency);
  if (transfer.error != 0) return;
  ++latency->buckets.at(bucket_of(transfer.seconds));
  ++latency->timed;
}

double percentile(const Latency& latency, double percent) {
  if (latency.timed == 0) return 0.0;
  const auto wanted = std::max<std::int64_t>(
      static_cast<std::int64_t>(std::ceil(static_cast<double>(latency.timed) * percent / 100.0)), 1);
  std::size_t bucket = 0;
  std::int64_t seen = latency.buckets.front();
  while (seen < wanted && bucket + 1 < Latency::kBuckets) seen += latency.buckets.at(++bucket);
  return bucket_middle(bucket) / kNanosecondsPerMillisecond;
}
