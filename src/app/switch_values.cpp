#include "app/switch_values.h"

#include <array>
#include <charconv>
#include <limits>
#include <string>

#include "form/number_text.h"
#include "platform/units.h"

namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
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

/// A decimal number, perhaps with up to six places behind a point. Whole numbers throughout: a fraction of a binary
/// number would be a sector short now and then.
struct Decimal {
  std::int64_t whole = 0;
  std::int64_t millionths = 0;
};

std::optional<Decimal> decimal(std::string_view text) {
  constexpr std::size_t kPlaces = 6;
  const std::size_t point = text.find('.');
  const std::string_view before = text.substr(0, point);
  if (before.empty() || before.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const std::optional<std::int64_t> whole = digits(before, 10);
  if (!whole || point == std::string_view::npos) return whole ? std::optional(Decimal{.whole = *whole}) : std::nullopt;
  std::string places(text.substr(point + 1));
  if (places.empty() || places.size() > kPlaces || places.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  places.resize(kPlaces, '0');
  return Decimal{*whole, *digits(places, 10)};
}

struct Unit {
  std::string_view name;
  std::int64_t bytes;
};

constexpr std::array kUnits = {
    Unit{"KIB", 1LL << 10U}, Unit{"MIB", 1LL << 20U}, Unit{"GIB", 1LL << 30U},   Unit{"TIB", 1LL << 40U},
    Unit{"KB", 1'000},       Unit{"MB", 1'000'000},   Unit{"GB", 1'000'000'000}, Unit{"TB", 1'000'000'000'000}};

std::optional<Amount> in_bytes(std::string_view number, const Unit& unit) {
  const std::optional<Decimal> value = decimal(number);
  if (!value || value->whole > kMost / unit.bytes - 1) return std::nullopt;
  const std::int64_t bytes = value->whole * unit.bytes + value->millionths * unit.bytes / kMillion;
  return Amount{.sectors = bytes / SectorSize};
}

std::optional<Amount> in_percent(std::string_view number) {
  constexpr std::int64_t kAll = 100;
  const std::optional<Decimal> value = decimal(number);
  if (!value || value->whole > kAll || (value->whole == kAll && value->millionths > 0)) return std::nullopt;
  return Amount{.share = DiskShare{value->whole * kMillion + value->millionths}};
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
  if (const auto sectors = whole_number(text)) return Amount{.sectors = *sectors};
  if (!text.empty() && text.back() == '%') return in_percent(text.substr(0, text.size() - 1));
  const std::string upper = upper_case(text);
  for (const Unit& unit : kUnits) {
    if (upper.ends_with(unit.name)) return in_bytes(text.substr(0, text.size() - unit.name.size()), unit);
  }
  return std::nullopt;
}
