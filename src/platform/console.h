#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

/// The process's command line, the program's own path first, in the ANSI code page.
std::string command_line();

/// Writes bytes as they are. Gives 0, or the system's code when the stream is closed, absent or full.
std::uint32_t write_out(std::string_view text);
std::uint32_t write_err(std::string_view text);

/// False in a release build, which writes no trace.
#ifdef NDEBUG
inline constexpr bool kDebugBuild = false;
#else
inline constexpr bool kDebugBuild = true;
#endif

/// Passes a line to a debugger, if one is attached. Callers do so in debug builds only.
void debug_text(const std::string& text);

/// True when standard error is a terminal, on which a line may be rewritten in place.
bool err_is_terminal();

/// Lets go of a console that this program alone owns (a double click); a console shared with a caller stays.
void release_lone_console();

/// From here on Control-C and Control-Break make the next pump_events call `on_cancel`; closing the console, log-off
/// and shutdown make it call `on_exit`, and hold the system back, as long as it allows, until allow_shutdown().
void watch_console(void (*on_cancel)(), void (*on_exit)());

/// Between the two the disk holds data that are not its own: a console that closes waits for the end, and a session
/// that ends is told why the program does not answer.
void hold_shutdown();
void allow_shutdown();

}  // namespace platform
