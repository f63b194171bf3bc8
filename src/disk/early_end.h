#pragma once

#include <cstdint>
#include <string>

/// Why a run ends before its transfers do, beside the user's wish.
struct EarlyEnd {
  int gone_in_a_row = 0;           // transfers that failed as they do when the drive is not there
  std::int64_t failures_left = 0;  // before the run ends; 0 for as many as there are
  std::int64_t disk_sectors = 0;   // 0 while not known
  bool past_end = false;           // a transfer that began past the disk's end failed
  std::string why{};               // empty while the run goes on
};

inline EarlyEnd early_end;

/// True for the system errors of a drive that was pulled out or is not ready any more (winerror.h):
/// ERROR_DEVICE_NOT_CONNECTED, ERROR_DEV_NOT_EXIST, ERROR_NOT_READY, ERROR_DEVICE_REMOVED.
bool says_gone(std::uint32_t code);

/// Begins a run on a disk of `disk_sectors` sectors (0: unknown) that ends when `most_failures` transfers have failed;
/// 0 for no such limit.
void begin_early_end(std::int64_t most_failures, std::int64_t disk_sectors);

/// Notes that a transfer from `lba` failed with the system's `code`, or succeeded: 0. The run ends after the last
/// failure that it may have, after one of a transfer that begins past the disk's end, and after three in a row of a
/// drive that is gone, if a request for its length fails too.
void note_outcome(std::int64_t lba, std::uint32_t code);

/// True when the user wants the command to stop, or it ends by itself: no transfer begins any more.
bool told_to_stop();
