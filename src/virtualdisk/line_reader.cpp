#include "virtualdisk/line_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

namespace virtualdisk {
namespace {

constexpr std::string_view kBlanks = " \t\r\f\v";

/// Reads the whole of `word`, with an optional sign; false when anything of it is no number or it does not fit.
bool read_whole(std::string_view word, std::int64_t* value) {
  const bool negative = word.starts_with('-');
  if (negative) word.remove_prefix(1);
  const bool hex = word.starts_with("0x") || word.starts_with("0X");
  if (hex) word.remove_prefix(2);
  std::uint64_t magnitude = 0;
  const auto [end, code] = std::from_chars(word.data(), word.data() + word.size(), magnitude, hex ? 16 : 10);
  if (word.empty() || code != std::errc() || end != word.data() + word.size() || magnitude > INT64_MAX) return false;
  *value = negative ? -static_cast<std::int64_t>(magnitude) : static_cast<std::int64_t>(magnitude);
  return true;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

LineReader::LineReader(std::string_view line) : rest_(trimmed(line)) {}

std::string_view LineReader::peek() const {
  return rest_.substr(0, rest_.find_first_of(kBlanks));
}

std::string_view LineReader::word(const char* what) {
  const std::string_view found = peek();
  if (found.empty()) fail(std::string("missing ") + what);
  rest_ = trimmed(rest_.substr(found.size()));
  return found;
}

std::int64_t LineReader::number(const char* what, std::int64_t low, std::int64_t high) {
  const std::string_view found = word(what);
  std::int64_t value = 0;
  if (found.empty()) return 0;
  if (!read_whole(found, &value)) {
    fail("bad number for " + std::string(what) + ": " + std::string(found));
  } else if (value < low || value > high) {
    fail(std::string(what) + " must be " + std::to_string(low) + " to " + std::to_string(high) + ": " +
         std::string(found));
  }
  return error_.empty() ? value : 0;
}

double LineReader::positive(const char* what) {
  const std::string_view found = word(what);
  if (found.empty()) return 0.0;
  std::int64_t whole = 0;
  double value = 0.0;
  bool good = read_whole(found, &whole);
  if (good) {
    value = static_cast<double>(whole);
  } else {
    const auto [end, code] = std::from_chars(found.data(), found.data() + found.size(), value);
    good = code == std::errc() && end == found.data() + found.size();
  }
  if (!good || !std::isfinite(value) || value <= 0.0) {
    fail("bad number for " + std::string(what) + ": " + std::string(found));
    return 0.0;
  }
  return value;
}

std::string LineReader::text(const char* what, std::size_t longest) {
  const std::string_view found = std::exchange(rest_, {});
  if (found.empty()) fail(std::string("missing ") + what);
  if (found.size() > longest) {
    fail(std::string(what) + " has more than " + std::to_string(longest) + " characters");
  }
  return std::string(found);
}

void LineReader::fail(std::string reason) {
  if (error_.empty()) error_ = std::move(reason);
}

}  // namespace virtualdisk
