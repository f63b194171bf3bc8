#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace virtualdisk {

/// The words of one line of a disk file, taken from left to right. The first thing that is wrong with the line is kept
/// in error(); everything read after it is 0 or empty.
class LineReader {
 public:
  explicit LineReader(std::string_view line);

  /// True when no word is left.
  bool at_end() const { return rest_.empty(); }
  std::string_view peek() const;
  std::string_view word(const char* what);

  /// A whole number, decimal or 0x hex, from `low` to `high`.
  std::int64_t number(const char* what, std::int64_t low, std::int64_t high);

  /// A number above 0, which may have a fraction.
  double positive(const char* what);

  /// Everything up to the end of the line, at most `longest` characters.
  std::string text(const char* what, std::size_t longest);

  void fail(std::string reason);
  const std::string& error() const { return error_; }

 private:
  std::string_view rest_;
  std::string error_;
};

/// Cuts blanks, tabs and a carriage return off both ends.
std::string_view trimmed(std::string_view text);

}  // namespace virtualdisk
