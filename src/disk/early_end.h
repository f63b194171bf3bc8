#pragma once

#include <cstdint>
#include <string>

/// Why a run ends before its transfers do, beside the user's wish.
struct EarlyEnd {
  int gone_in_a_row = 0;           // transfers that failed as they do when the drive is not there
  std::int64_t failures_left = 0;  // before the run ends; 0 for as many as there are
  std::string why{};               // empty while the run goes on
};

inline EarlyEnd early_end;

/// True for the system errors of a drive that was pulled out or is not ready any more (winerror.h):
/// ERROR_DEVICE_NOT_CONNECTED, ERROR_DEV_NOT_EXIST, ERROR_NOT_READY, ERROR_DEVICE_REMOVED.
bool says_gone(std::uint32_t code);

/// A run begins that ends when `most_failures` transfers have failed; 0 for no such limit.
void begin_early_end(std::int64_t most_failures);

/// A transfer failed with `code`, or succeeded: 0. Three in a row that say that the drive is gone, and a request for
/// its length that fails too, end the run, and so does the last failure that it may have.
void note_outcome(std::uint32_t code);

/// True when the user wants the command to stop, or it ends by itself: no transfer begins any more.
bool told_to_stop();
