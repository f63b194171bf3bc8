#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Where a read found the disk bad: by whole transfers as they failed or stalled, exactly once these were read again in
/// pieces.

enum class BadKind : std::uint8_t {
  unreadable,        // every sector failed
  slow,              // every sector answered, and late
  failed_transfer,   // some sector of it failed; nobody has looked which
  stalled_transfer,  // some sector of it was late
};

/// "unreadable", "slow", "failed transfer", "stalled transfer".
const char* bad_kind_text(BadKind kind);

/// True where the range holds bad sectors alone, and not also good ones of the transfer that they stood in.
constexpr bool is_exact(BadKind kind) {
  return kind == BadKind::unreadable || kind == BadKind::slow;
}

struct BadRange {
  std::int64_t first_lba = 0;
  std::int64_t sectors = 0;
  BadKind kind = BadKind::unreadable;
  std::uint32_t code = 0;      // system error; 0 for late ones
  double milliseconds = 0.0;   // of the longest read that touched it
  std::string partition = {};  // in which it lies; empty while nobody has looked
  std::string owner = {};      // volume and file, or what stands there instead; empty likewise

  std::int64_t end_lba() const { return first_lba + sectors; }
};

/// "LBA 624000 to 624007"; "LBA 624000" of one sector.
std::string lba_text(const BadRange& range);

/// The ranges that touch the sectors from `first_lba` to before `end_lba`, in the order given.
std::vector<BadRange> ranges_in(const std::vector<BadRange>& ranges, std::int64_t first_lba, std::int64_t end_lba);
