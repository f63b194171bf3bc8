#include "measure/usual_time.h"

#include <algorithm>

namespace {

const UsualTime::Times& times_of(Phase phase, const UsualTime& usual) {
  return usual.of_phase.at(static_cast<std::size_t>(phase));
}

}  // namespace

std::int64_t add_usual(const Transfer& transfer, UsualTime* usual) {
  UsualTime::Times& times = usual->of_phase.at(static_cast<std::size_t>(transfer.phase));
  const auto sectors = static_cast<double>(std::max<std::int64_t>(transfer.sectors, 1));
  times.seconds.at(static_cast<std::size_t>(times.count % UsualTime::kRemembered)) = transfer.seconds / sectors;
  return times.count++;
}

bool is_surrounded(Phase phase, std::int64_t number, const UsualTime& usual) {
  return times_of(phase, usual).count > number + UsualTime::kEachSide;
}

std::optional<double> usual_seconds(const Transfer& transfer, std::int64_t number, const UsualTime& usual) {
  const UsualTime::Times& times = times_of(transfer.phase, usual);
  const std::int64_t oldest = std::max<std::int64_t>(times.count - UsualTime::kRemembered, 0);
  // As many on each side, so that a disk that gets slower and slower is no surprise; at an end of the run just enough.
  const std::int64_t before = std::min(number - oldest, UsualTime::kEachSide);
  const std::int64_t behind = std::min(times.count - 1 - number, UsualTime::kEachSide);
  const std::int64_t first = number - std::min(before, std::max(behind, UsualTime::kAtEnd));
  const std::int64_t last = number + std::min(behind, std::max(before, UsualTime::kAtEnd));
  const std::int64_t neighbours = last - first + 1;
  if (neighbours < UsualTime::kFewest) return std::nullopt;
  std::array<double, 2 * UsualTime::kEachSide + 1> sorted{};
  for (std::int64_t i = 0; i < neighbours; ++i) {
    sorted.at(static_cast<std::size_t>(i)) =
        times.seconds.at(static_cast<std::size_t>((first + i) % UsualTime::kRemembered));
  }
  auto* const middle = sorted.begin() + (neighbours - 1) / 2;
  std::nth_element(sorted.begin(), middle, sorted.begin() + neighbours);
  return *middle * static_cast<double>(transfer.sectors);
}

std::optional<double> usual_seconds(const Transfer& transfer, const UsualTime& usual) {
  return usual_seconds(transfer, times_of(transfer.phase, usual).count - 1, usual);
}
