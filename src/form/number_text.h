#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// How numbers are read from fields and printed. The decimal sign is a point in every locale.

/// Optional blanks around decimal digits within a signed 64-bit number; anything else gives 0.
std::int64_t number_in(std::string_view text);

/// True for a signed 64-bit number of decimal digits and nothing else.
bool is_plain_number(std::string_view text);

/// The leading decimal number of `text` ("2.5MB" gives 2.5), blanks before it allowed; 0 when there is none.
double leading_number(std::string_view text);

/// Up to 7 significant digits, shortest form, no exponent: "12.5", "3.90625", "-0.5".
std::string single_text(float value);

/// Up to 15 significant digits, shortest form, no exponent.
std::string double_text(double value);

/// `decimals` digits after the point, at least one before it, rounded half away from zero.
std::string fixed_text(double value, int decimals);

/// A byte with leading zeros, three digits wide.
std::string three_digits(std::uint8_t value);

/// A time span: "1:02:03", "2:03"; hours only where there are any. Begun seconds count whole.
std::string duration_text(double seconds);

std::string upper_case(std::string_view text);

/// `text` without blanks at its ends.
std::string trimmed(std::string_view text);
