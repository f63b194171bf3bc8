#include "app/switch_values.h"

#include <array>
#include <charconv>
#include <string>

#include "form/number_text.h"
#include "platform/units.h"

namespace {

constexpr std::size_t kGroup = 3;  // digits between commas

/// All of `text` as a number of `base`.
std::optional<std::int64_t> digits(std::string_view text, int base) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  const bool whole = error == std::errc() && end == text.data() + text.size() && text.front() != '-';
  return whole ? std::optional(value) : std::nullopt;
}

/// The digits of "1,234,567"; empty where the commas stand elsewhere.
std::string without_commas(std::string_view text) {
  std::string plain(text.substr(0, text.find(',')));
  if (plain.empty() || plain.size() > kGroup) return {};
  for (std::size_t at = plain.size(); at < text.size(); at += kGroup + 1) {
    const std::string_view group = text.substr(at + 1, kGroup);
    if (text[at] != ',' || group.size() != kGroup || group.find(',') != std::string_view::npos) return {};
    plain += group;
  }
  return plain;
}

struct Unit {
  const char* name;
  double bytes;
};

constexpr std::array kUnits = {
    Unit{"KIB", 1024.0}, Unit{"MIB", 1048576.0}, Unit{"GIB", 1073741824.0}, Unit{"TIB", 1099511627776.0},
    Unit{"KB", 1e3},     Unit{"MB", 1e6},        Unit{"GB", 1e9},           Unit{"TB", 1e12}};

/// A plain number, perhaps with a point.
std::optional<double> plain_real(std::string_view text) {
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  return whole && text.find_first_not_of("0123456789.") == std::string_view::npos ? std::optional(value) : std::nullopt;
}

std::optional<Amount> in_bytes(std::string_view number, const Unit& unit) {
  const std::optional<double> value = plain_real(number);
  constexpr double kMost = 9e18;  // bytes
  if (!value || *value * unit.bytes > kMost) return std::nullopt;
  return Amount{.sectors = static_cast<std::int64_t>(*value * unit.bytes) / kSectorSize, .percent = {}};
}

}  // namespace

std::optional<std::int64_t> whole_number(std::string_view text) {
  if (text.empty()) return std::nullopt;
  constexpr int kHex = 16;
  constexpr int kDecimal = 10;
  if (upper_case(text.substr(0, 2)) == "0X") {
    return text.size() > 2 ? digits(text.substr(2), kHex) : std::nullopt;
  }
  if (text.find(',') == std::string_view::npos) return digits(text, kDecimal);
  const std::string plain = without_commas(text);
  return plain.empty() ? std::nullopt : digits(plain, kDecimal);
}

std::optional<Amount> amount(std::string_view text) {
  if (const auto sectors = whole_number(text)) return Amount{.sectors = *sectors, .percent = {}};
  if (!text.empty() && text.back() == '%') {
    const std::optional<double> percent = plain_real(text.substr(0, text.size() - 1));
    constexpr double kAll = 100.0;
    return percent && *percent <= kAll ? std::optional(Amount{.sectors = 0, .percent = percent}) : std::nullopt;
  }
  const std::string upper = upper_case(text);
  for (const Unit& unit : kUnits) {
    if (upper.ends_with(unit.name))
      return in_bytes(text.substr(0, text.size() - std::string_view(unit.name).size()), unit);
  }
  return std::nullopt;
}
