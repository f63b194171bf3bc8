#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// Hexadecimal digits, printed in upper case and read in either.

/// Two upper-case digits for every byte value.
inline constexpr auto kHexPairs = [] {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::array<std::array<char, 2>, 256> pairs{};
  for (std::size_t value = 0; value < pairs.size(); ++value) pairs[value] = {kDigits[value / 16], kDigits[value % 16]};
  return pairs;
}();

/// Value of every character as a hexadecimal digit, -1 for one that is none.
inline constexpr auto kHexValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::int8_t digit = 0; digit < 10; ++digit) values[static_cast<std::size_t>('0' + digit)] = digit;
  for (std::int8_t digit = 10; digit < 16; ++digit) {
    values[static_cast<std::size_t>('A' + digit - 10)] = digit;
    values[static_cast<std::size_t>('a' + digit - 10)] = digit;
  }
  return values;
}();

constexpr int hex_value(char digit) {
  return kHexValues[static_cast<unsigned char>(digit)];
}

/// Value of two hexadecimal digits, or a negative number when one of them is none.
constexpr int hex_pair_value(char high, char low) {
  return hex_value(high) * 16 | hex_value(low);
}

/// `value` in upper-case digits, zeros in front of it up to `width`; 1 for no padding.
std::string hex_padded(std::uint64_t value, std::size_t width);

/// `value` in upper-case digits, one zero in front when their number is odd: "05", "01FF", "FF".
std::string NumbertoHex(std::uint64_t value);

/// True if `text` is not empty and all hexadecimal digits. Turns `text` into upper case in place.
bool Is_Hex(std::string& text);
