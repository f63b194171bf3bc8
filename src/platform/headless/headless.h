#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/system.h"
#include "platform/window.h"
#include "platform/wmi.h"

/// The platform without a desktop: it keeps every call, box and pump, takes its answers from a script, and has a clock
/// that tests move. A test starts fresh by assigning `{}`.
namespace headless {

/// Thrown by ExitProcess in place of ending the process; only tests catch it.
struct ProcessEnded {
  std::uint32_t code = 0;
};

/// Thrown in the middle of a run when the process is to die as by a power failure: nothing behind it happens.
struct ProcessDied {};

/// A message box or input box that was shown.
struct Box {
  std::string text;
  std::string title;
  platform::Buttons buttons = platform::Buttons::ok_cancel;
  std::string default_answer{};  // of an input box
  std::string answer{};
  std::string check_box{};  // its caption; empty for none
  bool ticked = false;      // as it was shown
};

/// A system call with what it passed (platform::CallFacts).
struct Call {
  std::string name;
  std::string text;
  std::array<std::uint32_t, 4> numbers{};
  std::vector<std::uint8_t> in;
};

/// What the management service answers to a query that begins with `query`.
struct WmiAnswer {
  std::string query;
  std::vector<platform::WmiRow> rows;
  bool fails_at_open = false;  // the query itself is refused
  int fails_at_row = -1;       // the row at which fetching fails, -1 for none
};

/// How far the rows of a query were fetched.
struct WmiCursor {
  std::size_t answer = 0;
  int row = 0;
};

struct Desktop {
  // Script.
  std::deque<std::string> answers;  // to boxes, in order: "OK", "CANCEL", "OK TICKED", "OK UNTICKED", or the line typed
  std::string otherwise;            // to boxes for which none is left; empty throws
  std::function<void(int)> at_pump;  // called with the pump's number, from 1: events of the user
  std::function<void()> at_box;      // called while a box is open
  bool has_display = false;
  int code_page = 1252;  // of letters' case; 932 is a double-byte one that has only ASCII letters
  std::string command_line = "sectorix";
  bool err_is_terminal = false;
  std::string current_volume;  // before every path, as "X:"
  std::string system_folder;   // empty: the system does not tell

  // Clock.
  double midnight_seconds = 36000.0;  // seconds since midnight
  double steady = 0.0;
  double seconds_per_look = 0.0;  // what each look at the time of day takes
  platform::DateTime now{2026, 3, 1, 10, 0, 0};
  std::uint32_t zone_id = 1;
  platform::TimeZone zone{-60, 0, -60};

  // Faults: the calls numbered fail_first to fail_last (from 1) fail with fail_code; the process dies at the one
  // numbered dies_at, and a file's write at which it does is cut off behind torn_bytes.
  std::int64_t fail_first = 0;
  std::int64_t fail_last = 0;
  std::int64_t dies_at = 0;
  std::uint32_t fail_code = 1117;  // ERROR_IO_DEVICE
  std::uint32_t torn_bytes = 0;

  std::set<std::string> foreign_names;  // objects that other processes have

  // What a user does while a read does not come back: Cancel, twice. In vain while shutdown is held.
  bool gives_up_reads = false;
  bool cuts_writes = false;  // a file takes half of what is written, as a full disk does
  bool given_up = false;

  // The management service.
  std::uint32_t out_fails = 0;  // standard output fails with this code
  bool wmi_absent = false;
  std::vector<WmiAnswer> wmi_answers;
  std::vector<std::string> wmi_queries;

  // What happened.
  std::vector<std::string> calls;
  std::vector<Call> passed;  // of the calls that open, lock, send a request or query the management service
  std::int64_t calls_made = 0;
  std::vector<Box> boxes;
  int pumps = 0;
  std::string out;
  std::string err;
  std::string terminal;  // both, in the order written
  std::string debug;
  int open_files = 0;
  int commands_begun = 0;
  int commands_ended = 0;
  std::uint32_t last_error = 0;
  bool held = false;  // between hold_shutdown and allow_shutdown
  bool keeps_calls = true;
  bool keeps_events = false;
  bool cancel_pressed = false;  // and not yet handled
  bool close_pressed = false;
  std::vector<std::string> events;  // calls, boxes, queries, output and commands, in one order

  // Between the calls.
  std::map<platform::WmiHandle, WmiCursor> wmi_cursors;
  platform::WmiHandle next_wmi_rows = 2;
  void (*cancel_watcher)() = nullptr;
  void (*exit_watcher)() = nullptr;
};

inline Desktop desktop;

/// Keeps an event where they are wanted.
void note(const std::string& event);

/// `when`, moved by `seconds`.
platform::DateTime later(const platform::DateTime& when, std::int64_t seconds);

/// Moves the clocks and the date.
void pass_time(double seconds);

/// What Control-C and closing the console do: the next pump calls the watcher.
void press_control_c();
void close_console();

}  // namespace headless
