#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/units.h"

/// What a transfer was part of.
enum class Phase : std::uint8_t { reading, writing, verifying, restoring, searching };

inline constexpr std::size_t kPhases = 5;

/// The phase in a word: "reading", "writing", "verifying", "restoring", "searching".
inline const char* phase_text(Phase phase) {
  constexpr std::array<const char*, kPhases> kTexts = {"reading", "writing", "verifying", "restoring", "searching"};
  return kTexts.at(static_cast<std::size_t>(phase));
}

/// The phase as files name it: "read", "write", "verify", "restore", "search".
inline const char* phase_name(Phase phase) {
  constexpr std::array<const char*, kPhases> kNames = {"read", "write", "verify", "restore", "search"};
  return kNames.at(static_cast<std::size_t>(phase));
}

/// True for the phases whose transfers write.
constexpr bool writes(Phase phase) {
  return phase == Phase::writing || phase == Phase::restoring;
}

/// One finished transfer. Times in seconds.
struct Transfer {
  Phase phase = Phase::reading;
  bool slow = false;  // below the limit, as the report tells it
  std::uint32_t error = 0;
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
  double start = 0.0;  // since the run's first transfer began
  double seconds = 0.0;
  double beyond = 0.0;  // the usual time for its length; 0 for a failed one
};

/// A transfer's rate in MB/s; 0 for a failed one, which moved nothing, and for one too short for the clock.
constexpr double rate_of(const Transfer& transfer) {
  if (transfer.error != 0 || transfer.seconds <= 0.0) return 0.0;
  return static_cast<double>(transfer.sectors) / kSectorsPerMb / transfer.seconds;
}
