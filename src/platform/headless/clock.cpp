#include "platform/clock.h"

#include <array>
#include <cstdio>

#include "platform/headless/headless.h"

namespace platform {

using headless::desktop;

double seconds_since_midnight() {
  headless::pass_time(desktop.seconds_per_look);
  return desktop.midnight_seconds;
}

double steady_seconds() {
  return desktop.steady;
}

std::uint64_t coarse_milliseconds() {
  return static_cast<std::uint64_t>(desktop.steady * 1000.0);
}

DateTime local_time() {
  return desktop.now;
}

DateTime utc_time() {
  constexpr std::int64_t kMinute = 60;
  return headless::later(desktop.now, (desktop.zone.bias + desktop.zone.standard_bias) * kMinute);
}

std::string default_form(const DateTime& when) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%d/%d/%d %02d:%02d:%02d", when.month, when.day, when.year, when.hour,
                when.minute, when.second);
  return text.data();
}

bool wait(double seconds, bool reads) {
  headless::pass_time(seconds);
  if (!reads || !desktop.gives_up_reads || desktop.held) return true;
  desktop.given_up = true;
  desktop.cancel_pressed = true;
  return false;
}

}  // namespace platform
