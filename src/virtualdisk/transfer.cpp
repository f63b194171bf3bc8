#include <algorithm>

#include "platform/clock.h"
#include "platform/system.h"
#include "platform/units.h"
#include "virtualdisk/disk.h"

namespace virtualdisk {
namespace {

/// Turns bytes into sectors and makes the checks that come before the medium is asked.
std::uint32_t begin_transfer(VirtualDisk& disk, std::uint64_t offset, std::uint32_t bytes, Range* range) {
  if (vanished(disk)) return kNotConnected;
  // The class driver refuses these: the drive never hears of them.
  const auto logical = static_cast<std::uint64_t>(disk.file.logical);
  if (offset % logical != 0 || bytes % logical != 0) return kInvalidParameter;
  if (disk.file.vanish_after) ++disk.transfers;
  *range = {static_cast<std::int64_t>(offset / SectorSize), bytes / SectorSize};
  return range->end() > disk.sectors ? kSectorNotFound : 0;
}

/// Lets the counters see what happened and the time pass that the disk takes, counted from `started`. False for a read
/// that the user gave up meanwhile.
bool end_transfer(VirtualDisk& disk, const Range& range, Event event, double started) {
  bool slow = false;
  const double seconds = disk.faults.takes_time() ? disk.faults.seconds(range, &slow) : 0.0;
  grow(disk, event);
  if (slow) grow(disk, Event::slow);
  if (seconds <= 0.0) return true;
  const double left = seconds - (platform::steady_seconds() - started);
  constexpr double kLongest = 86400.0;  // a day, whatever a disk file says
  return left <= 0.0 || platform::wait(std::min(left, kLongest), event == Event::read || event == Event::read_error);
}

double start_time(const VirtualDisk& disk) {
  return disk.faults.takes_time() ? platform::steady_seconds() : 0.0;
}

/// Writes the parts of `range` that reach the disk to where they land.
std::uint32_t write_pieces(VirtualDisk& disk, const Range& range, const std::uint8_t* bytes) {
  for (const Faults::Piece& piece : disk.faults.landing(range)) {
    std::uint32_t moved = 0;
    const std::uint32_t code = disk.content.write(static_cast<std::uint64_t>(piece.lands_at) * SectorSize,
                                                  bytes + (piece.range.first - range.first) * SectorSize,
                                                  static_cast<std::uint32_t>(piece.range.count * SectorSize), &moved);
    if (code != 0) return code;
  }
  return 0;
}

}  // namespace

std::int64_t sectors_per_logical(const VirtualDisk& disk) {
  return disk.file.logical / SectorSize;
}

void grow(VirtualDisk& disk, Event event) {
  grow(disk.smart, event);
  grow(disk.health, event);
}

bool vanished(const VirtualDisk& disk) {
  if (disk.hangs) return true;
  return disk.file.vanish_after && disk.transfers >= *disk.file.vanish_after;
}

std::uint32_t read_disk(VirtualDisk& disk, std::uint64_t offset, void* buffer, std::uint32_t bytes,
                        std::uint32_t* moved) {
  *moved = 0;
  Range range;
  const std::uint32_t refused = begin_transfer(disk, offset, bytes, &range);
  if (refused != 0) return refused;
  const double started = start_time(disk);
  std::uint32_t code = disk.faults.failure(Op::read, range);
  if (code == 0) {
    const auto moving = static_cast<std::uint32_t>(disk.faults.sectors_moved(Op::read, range) * SectorSize);
    code = disk.content.read(offset, buffer, moving, moved);
  }
  if (end_transfer(disk, range, code == 0 ? Event::read : Event::read_error, started)) return code;
  *moved = 0;
  return platform::kGivenUp;
}

std::uint32_t write_disk(VirtualDisk& disk, std::uint64_t offset, const void* buffer, std::uint32_t bytes,
                         std::uint32_t* moved) {
  *moved = 0;
  Range range;
  const std::uint32_t refused = begin_transfer(disk, offset, bytes, &range);
  if (refused != 0) return refused;
  if (disk.readonly) return kWriteProtect;
  const double started = start_time(disk);
  std::uint32_t code = disk.faults.failure(Op::write, range);
  if (code == 0) {
    const Range part = {range.first, disk.faults.sectors_moved(Op::write, range)};
    const auto moving = static_cast<std::uint32_t>(part.count * SectorSize);
    if (disk.faults.lands_in_place(part)) {
      code = disk.content.write(offset, buffer, moving, moved);
    } else {
      code = write_pieces(disk, part, static_cast<const std::uint8_t*>(buffer));
      if (code == 0) *moved = moving;
    }
    if (code == 0) disk.faults.heal(part);
  }
  end_transfer(disk, range, code == 0 ? Event::write : Event::write_error, started);
  return code;
}

}  // namespace virtualdisk
