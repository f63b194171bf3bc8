#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The progress of a command-line run on standard error: the status line, rewritten in place on a terminal, a line of
/// its own every 10 seconds elsewhere. Nothing without /OP or with /QUIET.

struct ProgressLine {
  std::uint64_t due = 0;  // by the coarse clock
  bool on_terminal = false;
  std::size_t width = 0;  // of the line that stands there
};

inline ProgressLine progress_line;

/// Starts the ten seconds anew.
void begin_progress_line();

/// Shows the status line, or `instead` of it another one, when it is due; false when it is not.
bool show_progress_line();
bool show_progress_line(const std::string& instead);

/// Takes the line from the terminal, for another one to be written there; it is shown again when it is due.
void clear_progress_line();

/// Leaves the status on the terminal where the line stands, so that what follows stands below it.
void end_progress_line();
