#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Patterns of one to four bytes: read from text, filled into memory; counting where memory differs.

inline constexpr std::string_view kDefaultPattern = "2C2CAA55";

/// What the user is told of a pattern with another character than 0-9 and A-F.
inline constexpr std::string_view kPatternError = "Please use Hexadecimal characters only (0-9,A-F)";

struct Pattern {
  std::array<std::uint8_t, 4> bytes{};
  std::size_t length = 1;  // 1 to 4 of the bytes
  bool replaced = false;   // the text was bad: this is the default pattern

  std::span<const std::uint8_t> span() const { return std::span(bytes).first(length); }
};

/// Reads two digits a byte: one byte from fewer than 4 digits, then one from every two, four at most; an odd last digit
/// and what follows the eighth are left out. A single digit is that byte, no text the byte 0.
Pattern parse_pattern(std::string_view text);

/// The pattern in its normal form, two upper-case digits a byte.
std::string pattern_text(const Pattern& pattern);

/// Fills `bytes` from its start with `pattern`, 1 to 4 bytes, repeated end to end; the last one may be cut.
void fill_pattern(std::span<std::uint8_t> bytes, std::span<const std::uint8_t> pattern);

/// Where bytes of whole sectors differ from a pattern, 1 to 4 bytes, repeated from their start.
struct PatternDifference {
  std::int64_t sectors = 0;  // in which a byte differs
  std::size_t first = 0;     // the first such byte, where there is one
};
PatternDifference difference_from(std::span<const std::uint8_t> bytes, std::span<const std::uint8_t> pattern);

/// How many bytes differ between `a` and `b`, as far as both reach.
std::size_t count_differing(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);
