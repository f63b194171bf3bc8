#pragma once

#include <cstdint>
#include <string>

#include "device/kernel32.h"

/// What stands between a press and a write: is it meant, is it this drive, is nobody else writing to it.

/// The drive as it was when a question named it, and the object that keeps other programs off it.
struct WriteGuard {
  bool looked = false;  // a question named the drive
  bool found = false;
  std::string model;
  std::string serial;
  std::int64_t sectors = 0;
  bool read_back = false;  // the question was answered so that the write is read back and compared
  kernel32::Handle held = kernel32::kInvalidHandle;
};

inline WriteGuard write_guard;

/// True when both fields of the range are plain decimal numbers. Another text, which a read takes for 0 or 1, is told.
bool range_is_plain();

/// Asks with `title` whether the selected drive may be overwritten, and names what is: the drive as it answers now and
/// the range in the fields, or all of the drive. True without a question in command-line mode; false, told with the
/// reason, for a drive that is not written to at all. `offers_read_back`: the question has a check box for it, which
/// stands as it was left last.
enum class Overwritten : std::uint8_t { range, anywhere };
bool confirm_write(const std::string& title, Overwritten what, bool offers_read_back = false);

/// The drive and the range in the fields, as lines for a question of one's own.
std::string named_range();

/// Where the buffer was read from another place than the range in the fields, or is shorter than it, asks whether it
/// may be written there; in command-line mode too.
bool confirm_source();

/// Remembers where the transfers of the command that ends have read the buffer from.
void note_source();

/// Why the selected drive, which answers, is not written to: Windows runs from it, or it cannot be learned whether it
/// does. Empty when it may be written to.
std::string why_not_written();

/// In the frame: true when the drive may be written to and is the one that the questions named; false is told.
bool still_the_drive();

/// Keeps other programs from writing to the selected drive until release_drive(). False, told, when one is writing.
bool hold_drive();
void release_drive();
