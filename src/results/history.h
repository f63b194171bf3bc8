#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"

/// A drive's history: a file in the folder of /HISTORY with a line of JSON for each run.

/// What a line keeps.
struct HistoryLine {
  platform::DateTime date;  // local
  std::string model;
  std::string serial;
  std::string firmware;
  std::string operation;
  std::string verdict;  // the grade's name
  std::string why;
  std::map<std::string, std::int64_t> numbers;  // by the names of health_numbers()
};

/// The line without its end.
std::string history_text(const HistoryLine& line);

/// Nothing for a text that is no such line, as the last one of a run that was cut off.
std::optional<HistoryLine> read_history_line(std::string_view text);

/// What only grows and has: "pending sectors 0 on 2 March, 8 now". The year stands there where it is not this one.
std::vector<std::string> grown_since(const HistoryLine& then, const HistoryLine& now);

/// Adds `line` to the drive's history in `folder`. Gives the last line of the same drive before it. A failure is told
/// in `problem`: nothing is written then.
std::optional<HistoryLine> add_to_history(const std::string& folder, const HistoryLine& line, std::string* problem);
