#include "virtualdisk/faults.h"

#include <cstddef>
#include <limits>

#include "platform/units.h"
#include "virtualdisk/page.h"

namespace virtualdisk {
namespace {

constexpr std::uint32_t kDataError = 23;   // ERROR_CRC, winerror.h
constexpr std::uint32_t kWriteFault = 29;  // ERROR_WRITE_FAULT
constexpr std::size_t kNoOrder = std::numeric_limits<std::size_t>::max();

bool concerns(Op listed, Op asked) {
  return listed == Op::any || listed == asked;
}

}  // namespace

Faults::Faults(const DiskFile& disk, std::int64_t sectors)
    : sectors_(sectors), heals_(disk.heal), outer_rate_(disk.outer_rate), inner_rate_(disk.inner_rate) {
  for (const FailLine& line : disk.fails)
    fails_.add(line.range, {line.op, line.code, static_cast<std::size_t>(&line - disk.fails.data())});
  for (const ShortLine& line : disk.shorts) shorts_.add(line.range, line.op);
  for (const SlowLine& line : disk.slows) slows_.add(line.range, line.seconds);
  for (const StrayLine& line : disk.strays)
    strays_.add(line.range, {line.offset, static_cast<std::size_t>(&line - disk.strays.data())});
  for (const Range& range : disk.drops) drops_.add(range, {});
  fails_.sort();
  shorts_.sort();
  slows_.sort();
  strays_.sort();
  drops_.sort();
}

std::uint32_t Faults::failure(Op op, const Range& range) const {
  std::uint32_t code = 0;
  std::size_t first = kNoOrder;
  fails_.each_touching(range, [&](const auto& entry) {
    const Listed& line = entry.value;
    // A healing disk writes elsewhere what it could not read back; only lines for writes alone stop it.
    const bool healed = heals_ && op == Op::write && line.op == Op::any;
    if (!concerns(line.op, op) || healed || line.order >= first) return;
    first = line.order;
    code = line.code != 0 ? line.code : op == Op::read ? kDataError : kWriteFault;
  });
  return code;
}

void Faults::heal(const Range& written) {
  if (heals_ && written.count > 0) fails_.cut(written, [](const Listed& line) { return line.op != Op::write; });
}

std::int64_t Faults::sectors_moved(Op op, const Range& range) const {
  std::int64_t stop = range.end();
  shorts_.each_touching(range, [&](const auto& entry) {
    if (concerns(entry.value, op)) stop = std::min(stop, std::max(entry.range.first, range.first));
  });
  return stop - range.first;
}

double Faults::seconds(const Range& range, bool* slow) const {
  double total = 0.0;
  *slow = false;
  slows_.each_touching(range, [&](const auto& entry) {
    total += entry.value;
    *slow = true;
  });
  if (outer_rate_ > 0.0) {
    const double last = static_cast<double>(std::max<std::int64_t>(sectors_ - 1, 1));
    const double place = static_cast<double>(range.first) / last;
    const double rate = outer_rate_ + (inner_rate_ - outer_rate_) * place;
    total += static_cast<double>(range.count) / kSectorsPerMb / rate;
  }
  return total;
}

bool Faults::lands_in_place(const Range& range) const {
  bool in_place = true;
  strays_.each_touching(range, [&](const auto& /*entry*/) { in_place = false; });
  drops_.each_touching(range, [&](const auto& /*entry*/) { in_place = false; });
  return in_place;
}

std::vector<Faults::Piece> Faults::landing(const Range& range) const {
  // Between two neighbouring edges every sector has the same fate.
  std::vector<std::int64_t> edges = {range.first, range.end()};
  const auto add_edges = [&](const auto& entry) {
    edges.push_back(std::clamp(entry.range.first, range.first, range.end()));
    edges.push_back(std::clamp(entry.range.end(), range.first, range.end()));
  };
  strays_.each_touching(range, add_edges);
  drops_.each_touching(range, add_edges);
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

  std::vector<Piece> pieces;
  for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
    const Range part = {edges[i], edges[i + 1] - edges[i]};
    bool dropped = false;
    drops_.each_touching(part, [&](const auto& /*entry*/) { dropped = true; });
    if (dropped) continue;
    std::size_t first = kNoOrder;
    std::int64_t offset = 0;
    strays_.each_touching(part, [&](const auto& entry) {
      if (entry.value.order >= first) return;
      first = entry.value.order;
      offset = entry.value.offset;
    });
    // What strays off the disk is lost.
    const std::int64_t begin = std::max<std::int64_t>(part.first + offset, 0);
    const std::int64_t end = std::min(part.end() + offset, sectors_);
    if (begin < end) pieces.push_back({{begin - offset, end - begin}, begin});
  }
  return pieces;
}

}  // namespace virtualdisk
