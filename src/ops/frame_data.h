#pragma once

#include <string>

#include "platform/clock.h"
#include "smart/snapshot.h"

/// What the running or last operation's frame keeps between its start and its end.
struct Frame {
  std::string Smart_Text;  // both SMART listings
  Snapshot before;
  platform::DateTime Op_Start_Date;
  platform::DateTime start_utc;
};

extern Frame frame;
