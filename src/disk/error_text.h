#pragma once

#include <cstdint>
#include <string>

/// The program's own text for a system error code of a failed transfer, else the system's.
std::string GetErrMsg(std::uint32_t code);

/// The system's text for a code, without line breaks; "(No such error)" when it has none.
std::string SystemErrorText(std::uint32_t code);

/// Code and text for the end of a sentence: "error 112 - There is not enough space on the disk."
std::string coded_error_text(std::uint32_t code);

/// The text for a drive that could not be opened; empty for 0 and for a code that the table does not have.
std::string open_error_text(std::uint32_t code);
