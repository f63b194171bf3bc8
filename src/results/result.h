#pragma once

#include <cstdint>
#include <string>

#include "disk/counters.h"
#include "disk/progress.h"
#include "eventlog/event_log.h"
#include "platform/clock.h"
#include "smart/identification.h"
#include "smart/snapshot.h"

/// What a result file tells beside what was measured. Texts are in the ANSI code page.
struct Result {
  std::string version;
  std::string command_line;
  std::string operation;  // "read", "random write" ...
  platform::DateTime start_local;
  platform::DateTime start_utc;
  platform::DateTime end_local;
  platform::DateTime end_utc;
  int drive = 0;
  bool cancelled = false;
  Identification disk;
  Counters counters;
  Progress rates;
  Snapshot before;
  Snapshot after;
  EventLog events;
  std::int16_t exit_code = 0;
};
