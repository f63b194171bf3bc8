#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// What the disk search looks for, as typed by the user: "tText", "TText", "H0531" or "!H2E".

enum class SearchKind : std::uint8_t { text, text_any_case, hex, not_equal };

enum class SearchProblem : std::uint8_t {
  none,
  bad_prefix,  // the question is asked again
  bad_hex,     // the pattern cannot be looked for: no match
};

struct Search {
  SearchKind kind = SearchKind::text;
  std::vector<std::uint8_t>
      pattern;  // text_any_case: in upper case; not_equal: its first byte counts; empty finds nothing
  SearchProblem problem = SearchProblem::none;
  std::array<std::uint8_t, 256> upper_case{};  // text_any_case: of each byte in the system's code page
  std::string_view error;                      // what the user is told of the problem; empty when there is none
};

/// Reads a search string, whose text is in the ANSI code page. An odd number of digits is told before a blank among
/// them.
Search parse_search(std::string_view search_string);

/// Returns the position of the first match in `bytes`, counted from 1; 0 if there is none.
std::int64_t FindStringPosinBuffer(const Search& search, std::span<const std::uint8_t> bytes);
