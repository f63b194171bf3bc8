#include "form/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

/// Prints `value` with `digits` significant digits, without exponent and without zeros at the end.
std::string significant(double value, int digits) {
  if (value == 0.0 || !std::isfinite(value)) return "0";
  // "%e" rounds to the digits wanted; its exponent says how many of them stand behind the point.
  std::array<char, 512> text{};
  std::snprintf(text.data(), text.size(), "%.*e", digits - 1, value);
  const std::string_view scientific = text.data();
  int exponent = 0;
  const std::size_t sign = scientific.find('e') + 1;
  const std::size_t first_digit = scientific[sign] == '+' ? sign + 1 : sign;
  std::from_chars(scientific.data() + first_digit, scientific.data() + scientific.size(), exponent);
  const double rounded = std::strtod(text.data(), nullptr);
  const int decimals = digits - 1 - exponent > 0 ? digits - 1 - exponent : 0;
  std::snprintf(text.data(), text.size(), "%.*f", decimals, rounded);
  std::string plain = text.data();
  if (plain.find('.') != std::string::npos) {
    plain.erase(plain.find_last_not_of('0') + 1);
    if (plain.back() == '.') plain.pop_back();
  }
  return plain;
}

}  // namespace

std::string upper_case(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::int64_t number_in(std::string_view text) {
  const std::string digits = trimmed(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool whole = error == std::errc() && end == digits.data() + digits.size() && digits.front() != '-';
  return whole ? value : 0;
}

bool is_plain_number(std::string_view text) {
  const bool digits =
      !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  std::int64_t value = 0;
  return digits && std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

double leading_number(std::string_view text) {
  std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return 0.0;
  if (text[first] == '+') ++first;
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(text.data() + first, text.data() + text.size(), value, std::chars_format::fixed);
  return error == std::errc() && std::isfinite(value) ? value : 0.0;
}

std::string single_text(float value) {
  constexpr int kSingleDigits = 7;
  return significant(static_cast<double>(value), kSingleDigits);
}

std::string double_text(double value) {
  constexpr int kDoubleDigits = 15;
  return significant(value, kDoubleDigits);
}

std::string three_digits(std::uint8_t value) {
  const std::string text = std::to_string(value);
  return std::string(3 - text.size(), '0') + text;
}

std::string fixed_text(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  const double scaled = value * scale;
  std::array<char, 512> text{};
  // A value too large to be scaled has no digits behind the point to be rounded.
  std::snprintf(text.data(), text.size(), "%.*f", decimals, std::isfinite(scaled) ? std::round(scaled) / scale : value);
  return text.data();
}

std::string duration_text(double seconds) {
  constexpr std::int64_t kMinute = 60;
  const auto two_digits = [](std::int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  const auto whole = static_cast<std::int64_t>(std::ceil(seconds));
  const std::int64_t minutes = whole / kMinute;
  const std::string end = ":" + two_digits(whole % kMinute);
  if (minutes < kMinute) return std::to_string(minutes) + end;
  return std::to_string(minutes / kMinute) + ":" + two_digits(minutes % kMinute) + end;
}
