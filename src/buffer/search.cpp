#include "buffer/search.h"

#include <algorithm>

#include "buffer/hex_text.h"
#include "buffer/pattern.h"
#include "buffer/search_kernels.h"
#include "platform/text.h"

namespace {

constexpr std::string_view kBadPrefix = "Search string must begin with t or T or H or !H";
constexpr std::string_view kOddDigits = "Hex values must be in twos";
constexpr std::string_view kSpaces = "Hex values cannot contain spaces";

struct Prefix {
  std::string_view text;
  SearchKind kind;
};
constexpr Prefix kPrefixes[] = {
    {"!H", SearchKind::not_equal}, {"t", SearchKind::text}, {"T", SearchKind::text_any_case}, {"H", SearchKind::hex}};

std::string_view hex_error(std::string_view digits) {
  const auto blanks = static_cast<std::size_t>(std::count(digits.begin(), digits.end(), ' '));
  if ((digits.size() - blanks) % 2 != 0) return kOddDigits;
  if (blanks != 0) return kSpaces;
  // Taking other characters for digits would look for what nobody asked for.
  const bool hex = std::all_of(digits.begin(), digits.end(), [](char c) { return hex_value(c) >= 0; });
  return hex ? std::string_view() : kPatternError;
}

}  // namespace

Search parse_search(std::string_view search_string) {
  Search search;
  const auto* const prefix = std::find_if(std::begin(kPrefixes), std::end(kPrefixes), [&](const Prefix& candidate) {
    return search_string.starts_with(candidate.text);
  });
  if (prefix == std::end(kPrefixes)) {
    search.problem = SearchProblem::bad_prefix;
    search.error = kBadPrefix;
    return search;
  }
  search.kind = prefix->kind;
  const std::string_view rest = search_string.substr(prefix->text.size());
  if (search.kind == SearchKind::text || search.kind == SearchKind::text_any_case) {
    search.pattern.assign(rest.begin(), rest.end());
    if (search.kind == SearchKind::text) return search;
    search.upper_case = platform::ansi_upper_case();
    for (std::uint8_t& byte : search.pattern) byte = search.upper_case[byte];
    return search;
  }
  search.error = hex_error(rest);
  if (!search.error.empty()) {
    search.problem = SearchProblem::bad_hex;
    return search;
  }
  for (std::size_t i = 0; i < rest.size(); i += 2) {
    search.pattern.push_back(static_cast<std::uint8_t>(hex_pair_value(rest[i], rest[i + 1])));
  }
  return search;
}

std::int64_t FindStringPosinBuffer(const Search& search, std::span<const std::uint8_t> bytes) {
  if (search.pattern.empty()) return 0;
  std::size_t found = search_kernels::kNotFound;
  switch (search.kind) {
    case SearchKind::text:
    case SearchKind::hex:
      found = search_kernels::find_bytes(bytes, search.pattern);
      break;
    case SearchKind::text_any_case:
      found = search_kernels::find_any_case(bytes, search.pattern, search.upper_case);
      break;
    case SearchKind::not_equal:
      found = search_kernels::find_differing(bytes, search.pattern.front());
      break;
  }
  return found == search_kernels::kNotFound ? 0 : static_cast<std::int64_t>(found) + 1;
}
