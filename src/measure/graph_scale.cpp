#include "measure/graph_scale.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/units.h"

namespace {

struct Step {
  double size = 1.0;
  int decimals = 0;
};

/// The smallest round step of which at most `most` fit into `length`.
Step round_step(double length, int most) {
  const double least = length / std::max(most, 1);
  const double power = std::floor(std::log10(least));
  for (int more = 0; more < 2; ++more) {
    const double unit = std::pow(10.0, power + more);
    for (const double digit : {1.0, 2.0, 5.0}) {
      if (digit * unit >= least * (1.0 - 1e-9)) return {digit * unit, std::max(static_cast<int>(-power) - more, 0)};
    }
  }
  return {};
}

}  // namespace

Scale round_scale(double highest, int most_ticks) {
  if (!(highest > 0.0)) return {};
  const Step step = round_step(highest, most_ticks);
  return {std::ceil(highest / step.size * (1.0 - 1e-9)) * step.size, step.size, step.decimals};
}

Scale rate_scale(const Measure& of, double slow_limit, int most_ticks) {
  return round_scale(std::max(static_cast<double>(of.map.highest), slow_limit), most_ticks);
}

RangeAxis range_axis(std::int64_t first_lba, std::int64_t sectors, int most_ticks) {
  struct Unit {
    const char* name;
    std::int64_t sectors;
  };
  constexpr std::array<Unit, 3> kUnits = {{{"GB", 1024 * kSectorsPerMb}, {"MB", kSectorsPerMb}, {"sectors", 1}}};
  const auto* const unit = std::find_if(kUnits.begin(), kUnits.end() - 1,
                                        [&](const Unit& candidate) { return sectors >= candidate.sectors; });
  RangeAxis axis;
  axis.unit = unit->name;
  const auto unit_sectors = static_cast<double>(unit->sectors);
  const double first = static_cast<double>(first_lba) / unit_sectors;
  const double length = static_cast<double>(std::max<std::int64_t>(sectors, 1)) / unit_sectors;
  const Step step = round_step(length, most_ticks);
  const double size = unit->sectors == 1 ? std::max(step.size, 1.0) : step.size;
  axis.decimals = unit->sectors == 1 ? 0 : step.decimals;
  // From the range's start, since a far start has no digits left for what lies between two ticks.
  constexpr double kRounding = 1e-9;
  const double behind = std::fmod(first, size);
  const double to_first = behind < size * kRounding ? 0.0 : size - behind;
  for (int i = 0; to_first + i * size <= length * (1.0 + kRounding); ++i) {
    axis.ticks.push_back({(to_first + i * size) / length, first + to_first + i * size});
  }
  return axis;
}

double x_of(const RateMap& map, std::int64_t lba, double width) {
  if (map.sectors <= 0) return 0.0;
  return static_cast<double>(lba - map.first_lba) * width / static_cast<double>(map.sectors);
}

double y_of(const Scale& scale, double value, double height) {
  return height * (1.0 - std::clamp(value / scale.top, 0.0, 1.0));
}
