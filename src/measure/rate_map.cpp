#include "measure/rate_map.h"

#include <algorithm>

#include "platform/units.h"

namespace {

void add_to_column(const Transfer& transfer, float rate, std::int64_t sectors, RateColumn* column) {
  ++column->transfers;
  column->slow += transfer.slow ? 1U : 0U;
  column->errors += transfer.error != 0 ? 1U : 0U;
  column->longest = std::max(column->longest, static_cast<float>(transfer.seconds));
  if (rate <= 0.0F) return;
  const bool first = column->seconds <= 0.0;
  column->lowest = first ? rate : std::min(column->lowest, rate);
  column->highest = std::max(column->highest, rate);
  const auto share = static_cast<double>(sectors);
  column->sectors += share;
  column->seconds += transfer.seconds * share / static_cast<double>(transfer.sectors);
}

/// Keeps the first points, then each later one with the chance that leaves an even sample of all.
void add_point(const Transfer& transfer, float rate, RateMap* map) {
  // A linear congruential step, so that a run gives the same picture twice; Knuth's MMIX constants.
  map->sampler = map->sampler * 6364136223846793005U + 1442695040888963407U;
  const auto seen = static_cast<std::uint64_t>(++map->points_seen);
  // The generator's upper bits as a fraction of 1: a division would cost more than all the rest.
  const double chance = static_cast<double>(map->sampler >> 32) * 0x1p-32;
  const std::uint64_t place =
      seen <= RateMap::kPoints ? seen - 1 : static_cast<std::uint64_t>(chance * static_cast<double>(seen));
  if (place >= RateMap::kPoints) return;
  map->point.at(place) = {transfer.lba, rate, static_cast<float>(transfer.seconds), transfer.slow, transfer.error != 0};
}

void merge(const RateColumn& from, RateColumn* into) {
  if (from.seconds > 0.0) {
    into->lowest = into->seconds > 0.0 ? std::min(into->lowest, from.lowest) : from.lowest;
    into->highest = std::max(into->highest, from.highest);
  }
  into->sectors += from.sectors;
  into->seconds += from.seconds;
  into->longest = std::max(into->longest, from.longest);
  into->transfers += from.transfers;
  into->slow += from.slow;
  into->stalled += from.stalled;
  into->errors += from.errors;
  into->worst = std::max(into->worst, from.worst);
}

/// Calls `add` with each stretch that the transfer touches, and with how many of its sectors lie in it.
template <typename Add>
void each_column(const Transfer& transfer, RateMap* map, Add add) {
  // Distances from the range's start cannot overflow once they are known to lie in it.
  if (transfer.lba < map->first_lba || transfer.sectors <= 0) return;
  const std::int64_t from = transfer.lba - map->first_lba;
  if (from >= map->sectors) return;
  const std::int64_t end = from + std::min(transfer.sectors, map->sectors - from);
  for (std::int64_t i = from / map->column_sectors; i * map->column_sectors < end; ++i) {
    const std::int64_t begin = i * map->column_sectors;
    const std::int64_t within = std::min(end - begin, map->column_sectors) - std::max<std::int64_t>(from - begin, 0);
    add(within, &map->column.at(static_cast<std::size_t>(i)));
  }
}

}  // namespace

double average_rate(const RateColumn& column) {
  return column.seconds > 0.0 ? column.sectors / kSectorsPerMb / column.seconds : 0.0;
}

void lay_out(std::int64_t first_lba, std::int64_t sectors, bool keeps_points, RateMap* map) {
  map->first_lba = first_lba;
  map->sectors = std::max<std::int64_t>(sectors, 0);
  map->column_sectors = std::max<std::int64_t>(map->sectors / RateMap::kColumns, 1);
  if (map->column_sectors * RateMap::kColumns < map->sectors) ++map->column_sectors;
  map->columns = map->sectors / map->column_sectors + (map->sectors % map->column_sectors != 0 ? 1 : 0);
  map->keeps_points = keeps_points;
}

void add_rate(const Transfer& transfer, RateMap* map) {
  const auto rate = static_cast<float>(rate_of(transfer));
  map->highest = std::max(map->highest, rate);
  if (map->keeps_points) add_point(transfer, rate, map);
  each_column(transfer, map,
              [&](std::int64_t within, RateColumn* column) { add_to_column(transfer, rate, within, column); });
}

void add_class(const Transfer& transfer, LatencyClass which, RateMap* map) {
  if (which == LatencyClass::under_3) return;
  const std::uint32_t stalled = is_stalled(transfer) ? 1 : 0;
  each_column(transfer, map, [&](std::int64_t /*within*/, RateColumn* column) {
    column->worst = std::max(column->worst, which);
    column->stalled += stalled;
  });
}

void fetch_column(std::int64_t lba, const RateMap& map) {
  if (lba < map.first_lba || lba - map.first_lba >= map.sectors) return;
  const std::int64_t from = lba - map.first_lba;
  __builtin_prefetch(&map.column.at(static_cast<std::size_t>(from / map.column_sectors)), 1);
}

std::span<const RatePoint> points(const RateMap& map) {
  const auto kept = std::min<std::uint64_t>(static_cast<std::uint64_t>(map.points_seen), RateMap::kPoints);
  return std::span<const RatePoint>(map.point).first(kept);
}

PixelColumn pixel_column(const RateMap& map, std::int64_t pixel, std::int64_t pixels) {
  PixelColumn result;
  if (map.columns == 0 || pixels <= 0 || pixel < 0 || pixel >= pixels) return result;
  const std::int64_t first = pixel * map.columns / pixels;
  const std::int64_t end = std::max((pixel + 1) * map.columns / pixels, first + 1);
  result.first_lba = map.first_lba + first * map.column_sectors;
  result.end_lba = map.first_lba + std::min(end * map.column_sectors, map.sectors);
  for (std::int64_t i = first; i < end; ++i) merge(map.column.at(static_cast<std::size_t>(i)), &result.facts);
  return result;
}

void resample(const RateMap& map, std::span<PixelColumn> out) {
  const auto pixels = static_cast<std::int64_t>(out.size());
  for (std::int64_t i = 0; i < pixels; ++i) out[static_cast<std::size_t>(i)] = pixel_column(map, i, pixels);
}
