#include "platform/clock.h"

#include <array>
#include <cmath>
#include <cstdint>

#include "platform/win32/call.h"
#include "platform/win32/win_api.h"

namespace platform {

namespace {

std::int64_t ticks() {
  LARGE_INTEGER now{};
  ::QueryPerformanceCounter(&now);
  return now.QuadPart;
}

double seconds_per_tick() {
  LARGE_INTEGER frequency{};
  ::QueryPerformanceFrequency(&frequency);
  return 1.0 / static_cast<double>(frequency.QuadPart);
}

/// One look at the clock on the wall; all later times are counted from it.
struct Anchor {
  double tick = seconds_per_tick();
  std::int64_t start = ticks();
  double midnight_seconds = 0.0;

  Anchor() {
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    midnight_seconds = now.wHour * 3600.0 + now.wMinute * 60.0 + now.wSecond + now.wMilliseconds / 1000.0;
  }

  double elapsed() const { return static_cast<double>(ticks() - start) * tick; }
};

const Anchor kAnchor;

DateTime from_system(const SYSTEMTIME& time) {
  return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

SYSTEMTIME to_system(const DateTime& when) {
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(when.year);
  time.wMonth = static_cast<WORD>(when.month);
  time.wDay = static_cast<WORD>(when.day);
  time.wHour = static_cast<WORD>(when.hour);
  time.wMinute = static_cast<WORD>(when.minute);
  time.wSecond = static_cast<WORD>(when.second);
  return time;
}

}  // namespace

double seconds_since_midnight() {
  constexpr double kDay = 86400.0;
  const double seconds = kAnchor.midnight_seconds + kAnchor.elapsed();
  // The C library's fmod costs as much as the look at the clock.
  return seconds < kDay ? seconds : std::fmod(seconds, kDay);
}

double steady_seconds() {
  return kAnchor.elapsed();
}

std::uint64_t coarse_milliseconds() {
  return ::GetTickCount64();
}

DateTime local_time() {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  return from_system(now);
}

DateTime utc_time() {
  SYSTEMTIME now{};
  ::GetSystemTime(&now);
  return from_system(now);
}

std::string default_form(const DateTime& when) {
  const SYSTEMTIME time = to_system(when);
  std::array<char, 128> date{};
  std::array<char, 128> clock{};
  ::GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, date.data(), static_cast<int>(date.size()));
  ::GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, clock.data(), static_cast<int>(clock.size()));
  return std::string(date.data()) + " " + clock.data();
}

bool wait(double seconds, bool reads) {
  constexpr double kTimerTick = 0.016;  // a wait of the system may be late by this much
  const double end = kAnchor.elapsed() + seconds;
  if (seconds > kTimerTick && !win32::wait_for_drive(static_cast<DWORD>((seconds - kTimerTick) * 1000.0), reads)) {
    return false;
  }
  while (kAnchor.elapsed() < end) ::SwitchToThread();
  return true;
}

}  // namespace platform
