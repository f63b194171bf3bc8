#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "measure/latency.h"
#include "measure/transfer_record.h"

/// What the transfers over one stretch of the disk gave. Rates in MB/s, of transfers that succeeded and were timed.
struct RateColumn {
  double sectors = 0.0;  // timed, and the seconds they took; their quotient is the average
  double seconds = 0.0;
  float lowest = 0.0F;
  float highest = 0.0F;
  float longest = 0.0F;  // seconds of the longest transfer that touches the stretch, failed or not
  std::uint32_t transfers = 0;
  std::uint32_t slow = 0;
  std::uint32_t stalled = 0;
  std::uint32_t errors = 0;
  LatencyClass worst = LatencyClass::under_3;
};

/// Average MB/s; 0 where nothing was timed.
double average_rate(const RateColumn& column);

/// One transfer of a random test.
struct RatePoint {
  std::int64_t lba = 0;
  float rate = 0.0F;  // MB/s; 0 for a failed one
  float seconds = 0.0F;
  bool slow = false;
  bool failed = false;
};

/// Rates by place, in a fixed number of stretches over the run's range whatever its size, and a fixed number of points.
struct RateMap {
  static constexpr std::int64_t kColumns = 4096;
  static constexpr std::size_t kPoints = 8192;

  std::int64_t first_lba = 0;
  std::int64_t sectors = 0;         // of the range; 0: nothing is kept
  std::int64_t column_sectors = 1;  // length of a stretch
  std::int64_t columns = 0;         // stretches in use, at most kColumns
  bool keeps_points = false;        // random tests
  float highest = 0.0F;             // of all rates
  std::int64_t points_seen = 0;     // once more than kPoints, the kept ones are an even sample
  std::uint64_t sampler = 0;
  std::array<RateColumn, kColumns> column{};
  std::array<RatePoint, kPoints> point{};
};

/// Lays the stretches over `sectors` sectors from `first_lba`; the map is empty before.
void lay_out(std::int64_t first_lba, std::int64_t sectors, bool keeps_points, RateMap* map);

/// Adds a transfer to the stretches it touches; what lies outside the range is left out. Its class comes once it is
/// known.
void add_rate(const Transfer& transfer, RateMap* map);
void add_class(const Transfer& transfer, LatencyClass which, RateMap* map);

/// A transfer from `lba` begins: the stretch that add_rate() will change comes into the processor's cache meanwhile. On
/// a random test each is somewhere else, and its memory would be waited for after every transfer.
void fetch_column(std::int64_t lba, const RateMap& map);

/// The points kept.
std::span<const RatePoint> points(const RateMap& map);

/// What one of `pixels` pixel columns (`pixel` from 0) shows: the stretches it covers as one. first_lba and end_lba say
/// which part of the disk that is.
struct PixelColumn {
  std::int64_t first_lba = 0;
  std::int64_t end_lba = 0;
  RateColumn facts;
};
PixelColumn pixel_column(const RateMap& map, std::int64_t pixel, std::int64_t pixels);

/// The map over as many columns as `out` has: the graph, one a pixel, or the block map, one a cell.
void resample(const RateMap& map, std::span<PixelColumn> out);
