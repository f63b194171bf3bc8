#pragma once

#include <cstdint>
#include <string>

namespace platform {

/// Local time of day in seconds since midnight, with fractions: the performance counter, anchored once to local time,
/// so that a clock set meanwhile moves no measurement. Starts again from 0 at midnight.
double seconds_since_midnight();

/// Seconds from an arbitrary start; never goes back.
double steady_seconds();

/// Milliseconds from an arbitrary start, in steps of up to 16; as cheap as reading a variable.
std::uint64_t coarse_milliseconds();

struct DateTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// Local date and time of the system clock.
DateTime local_time();

/// The same instant's form in Coordinated Universal Time.
DateTime utc_time();

/// Date and time in the system's default form for the user, in the ANSI code page.
std::string default_form(const DateTime& when);

/// Waits as a drive's call does: until `seconds` have passed, finer than the system's timer tick, or, where it `reads`,
/// until the user gives it up. False when he did.
bool wait(double seconds, bool reads);

}  // namespace platform
