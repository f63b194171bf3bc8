#pragma once

#include <cstdint>
#include <vector>

#include "measure/measure.h"

/// The arithmetic of the rate graph, shared by everyone who draws it. Places are pixels from the left or from the top.

/// An axis from 0 to `top` with a tick every `step`, a round number (1, 2 or 5 times a power of ten).
struct Scale {
  double top = 1.0;
  double step = 1.0;
  int decimals = 0;  // that tell one tick from the next
};

/// The scale that reaches `highest` with at most `most_ticks` steps; 0 to 1 where nothing is there to show.
Scale round_scale(double highest, int most_ticks);

/// The scale of the MB/s axis: all rates and the slow limit are on it.
Scale rate_scale(const Measure& of, double slow_limit, int most_ticks);

/// The x axis: the range in GB, in MB below 1 GB, in sectors below 1 MB. A GB is 1024 MB, a MB 2048 sectors, as in the
/// rates.
struct RangeAxis {
  struct Tick {
    double share = 0.0;  // of the range, 0 to 1
    double value = 0.0;  // in units
  };
  const char* unit = "GB";
  std::vector<Tick> ticks;  // at most one more than asked for
  int decimals = 0;
};
RangeAxis range_axis(std::int64_t first_lba, std::int64_t sectors, int most_ticks);

/// The pixel of `lba` on an axis `width` pixels long.
double x_of(const RateMap& map, std::int64_t lba, double width);

/// The pixel of `value` on a scale drawn `height` pixels high, 0 at its top.
double y_of(const Scale& scale, double value, double height);
