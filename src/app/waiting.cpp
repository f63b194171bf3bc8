#include "app/waiting.h"

#include "form/form1.h"
#include "form/progress_line.h"
#include "pictures/progress_bar.h"

namespace {

using platform::Stops;
using platform::Waiting;

constexpr double kLong = 1.0;  // seconds, from which on it is said how long

std::string seconds_text(const Waiting& waiting) {
  return std::to_string(static_cast<int>(waiting.seconds)) + " s";
}

/// What becomes of a press that stops the command or the program.
std::string stopping_text(const Waiting& waiting) {
  std::string text = waiting.pressed == Stops::program ? "Leaving" : "Cancelling";
  text += " after this transfer";
  if (waiting.seconds >= kLong) text += ": the drive has not answered for " + seconds_text(waiting);
  if (waiting.holds_other_data) return text + ". The disk gets its contents back first.";
  if (waiting.pressed == Stops::command && waiting.can_be_given_up) return text + ". Cancel again gives the read up.";
  return text;
}

}  // namespace

std::string tell_waiting(const Waiting& waiting) {
  constexpr double kSoon = 0.1;  // seconds, in which a press is taken without a word
  progress_bar.waiting = static_cast<int>(waiting.seconds);
  if (waiting.seconds < (waiting.pressed == Stops::nothing ? kLong : kSoon)) return {};
  std::string text = waiting.pressed == Stops::nothing
                         ? form1.TxtStatus.text() + ", waiting for " + seconds_text(waiting)
                         : stopping_text(waiting);
  // Not while the disk holds data that are not its own: nothing may then wait for a console that somebody has halted.
  if (!waiting.holds_other_data && waiting.seconds >= kLong) show_progress_line(text);
  return text;
}

std::string leaving_text(const Waiting& waiting) {
  const std::string what = waiting.holds_other_data
                               ? "The disk is being given its contents back; that is not given up."
                               : "The drive has not finished what it was asked for, and that cannot be given up.";
  return "The drive has not answered for " + seconds_text(waiting) + ".\r\n" + what +
         "\r\nThe program ends as soon as the drive has answered.";
}
