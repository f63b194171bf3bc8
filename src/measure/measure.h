#pragma once

#include <array>
#include <cstdint>

#include "measure/latency.h"
#include "measure/rate_map.h"
#include "measure/slow_zones.h"
#include "measure/time_left.h"
#include "measure/transfer_record.h"
#include "measure/usual_time.h"

/// What a run measured: plain data of one fixed size, whatever the disk's size and however many transfers there are.
/// Nothing here knows of windows or files.

/// What runs. Random tests are shown as points, the others as a line.
enum class RunKind : std::uint8_t {
  none,
  read,
  write,
  search,
  restore,
  verify,
  random_read,
  random_write,
  destructive_write,
  off_track
};

/// The run in a word: "none", "read", "write", "search", "restore", "verify", "random read", "random write",
/// "destructive random write", "off-track write".
const char* run_kind_text(RunKind kind);

constexpr bool is_random(RunKind kind) {
  return kind >= RunKind::random_read;
}

/// What an operation is about to do. For a random test the range is the whole disk.
struct RunPlan {
  RunKind kind = RunKind::none;
  std::int64_t first_lba = 0;
  std::int64_t sectors = 0;  // of the range
  std::int64_t work = -1;    // sectors that will be transferred in all; -1: as many as the range has
};

/// A failed transfer.
struct TransferError {
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
  std::uint32_t code = 0;
  Phase phase = Phase::reading;
  double seconds = 0.0;
};

/// The last transfers, as long as their neighbours are not known: in the order of the run, from `first` on around the
/// end of the array.
struct Waiting {
  static constexpr std::size_t kMost = 64;

  struct One {
    Transfer transfer;
    std::int64_t number = 0;  // in its phase, of those that succeeded
  };
  std::array<One, kMost> ones{};
  std::size_t first = 0;
  std::size_t kept = 0;
};

struct Measure {
  static constexpr std::size_t kMostErrors = 1000;
  static constexpr std::size_t kMostStalls = 1000;

  RunPlan plan;
  Phase phase = Phase::reading;
  std::int64_t transfers = 0;
  std::int64_t done = 0;  // sectors transferred, failed ones included
  std::int64_t slow = 0;
  std::int64_t failed = 0;
  std::int64_t failed_writes = 0;
  bool running = false;
  bool stopped = false;  // the run ended because the user wanted it to
  double seconds = 0.0;  // from the first transfer's start to the last one's end
  double first_start = 0.0;
  double last_start = 0.0;  // times of day; `days` midnights lie between them
  double days = 0.0;
  std::int64_t next_lba = 0;  // behind the last transfer
  Pace pace;
  Latency latency;
  SlowZones zones;
  std::array<TransferError, kMostErrors> errors{};  // the first ones; `failed` counts all
  std::size_t errors_kept = 0;
  std::int64_t stalled = 0;
  std::array<Transfer, kMostStalls> stalls{};  // the first stalled transfers; `stalled` counts all
  std::size_t stalls_kept = 0;
  UsualTime usual;
  Waiting waiting;
  RateMap map;

  // These outlive a run.
  std::uint64_t runs = 0;  // grows by one at every begin_measuring()
  // Told of every transfer in the run's order; null for nobody.
  void (*on_transfer)(const Transfer&) = nullptr;  // at once
  void (*on_settled)(const Transfer&) = nullptr;   // when its time beyond the usual one is known
};

inline Measure measure;

/// An operation begins: everything of the one before is forgotten.
void begin_measuring(const RunPlan& plan);

/// The operation has ended, by itself or because the user `stopped` it. Nothing when it has already.
void end_measuring(bool stopped);

/// From here on transfers belong to `phase`.
void measure_phase(Phase phase);

/// A transfer as disk/ saw it. `start` and `end` are seconds since midnight.
struct Timed {
  bool wrote = false;
  bool slow = false;
  std::uint32_t error = 0;
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
  double start = 0.0;
  double end = 0.0;
};

/// Adds a transfer. Its phase is the entered one, or plain reading or writing where that one goes the other way.
/// Nothing between operations.
void measure_transfer(const Timed& timed);

/// How far the run is: the share done (0 to 1), the seconds left (-1 while unknown), and what it does.
struct HowFar {
  double share = 0.0;
  double seconds_left = -1.0;
  Phase phase = Phase::reading;
};
HowFar how_far(const Measure& of);

/// The percent of the run's work that were not done, rounded down, but not to 0 while something is left.
int percent_not_done(const Measure& of);
