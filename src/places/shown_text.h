#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Texts for the user out of what tables and drivers hold.

/// UTF-16LE up to its first zero in the system's ANSI code page. Control characters become "?", and so does what the
/// code page does not have.
std::string text_of_utf16(std::span<const std::uint8_t> data);

/// Upper-case hexadecimal digits, zeros in front of them up to `width`.
std::string hex_digits(std::uint64_t value, std::size_t width = 1);

/// "a, b, c".
std::string joined(const std::vector<std::string>& parts, const std::string& between = ", ");
