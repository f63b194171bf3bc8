#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// How a command ended, in one word.
enum class Outcome : std::uint8_t {
  ok,         // it came to its end and met nothing
  errors,     // something failed, differed or grew, or a result could not be written
  cancelled,  // by the user, also by leaving the program
  missing,    // the drive is not there
  refused,    // the command may not work on this drive, or not there; nothing was transferred
  mistake     // on the command line; no disk was opened
};

/// The word, as QV_RESULT and result files tell it.
const char* outcome_name(Outcome outcome);

/// What a command tells of its own end before the results are put together. Tests start fresh by `{}`.
struct CommandEnd {
  std::optional<Outcome> before_transfers;  // it ended as that before the first one
  std::string reason;                       // why; one line
  bool cancelled = false;                   // the user wanted it to end
  bool not_given_back = false;              // sectors may hold other contents than before a test that gives them back
  bool test_ended = false;                  // at a place, with no failed transfer to show for it
  bool results_lost = false;                // the report, a variable or a result file could not be written
};

inline CommandEnd command_end;

/// Keeps in mind that the command ends before its first transfer, and why.
void end_before_transfers(Outcome outcome, const std::string& reason);
