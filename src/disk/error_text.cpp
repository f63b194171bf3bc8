#include "disk/error_text.h"

#include <algorithm>
#include <array>
#include <span>

#include "device/kernel32.h"

namespace {

struct CodeText {
  std::uint32_t code;
  const char* text;
};

// Codes of winerror.h, in the program's own words.
constexpr std::array kTransferTexts = {
    CodeText{6, "Invalid Handle"},
    CodeText{8, "Not enough memory"},
    CodeText{9, "The storage control block address is invalid"},
    CodeText{13, "The data is invalid."},
    CodeText{14, "Not enough storage/memory is available to complete this operation"},
    CodeText{15, "The system cannot find the drive specified"},
    CodeText{19, "The media is write protected"},
    CodeText{20, "The system cannot find the device specified"},
    CodeText{21, "The device is not ready"},
    CodeText{23, "Data error (cyclic redundancy check)"},
    CodeText{24, "The program issued a command but the command length is incorrect."},
    CodeText{25, "Seek Error"},
    CodeText{27, "Sector Not Found"},
    CodeText{29, "WRITE FAULT"},
    CodeText{30, "READ FAULT"},
    CodeText{1450, "Insufficient resources/memory"},
};

constexpr std::array kOpenTexts = {
    CodeText{1, "Incorrect function"},
    CodeText{2, "The system cannot find the file specified."},
    CodeText{3, "The system cannot find the path specified."},
    CodeText{4, "The system cannot open the file."},
    CodeText{5, "Access is denied."},
    CodeText{6, "The handle is invalid."},
    CodeText{7, "The storage control blocks were destroyed."},
    CodeText{8, "Not enough storage is available to process this command."},
    CodeText{15, "The system cannot find the drive specified."},
    CodeText{19, "The media is write protected."},
    CodeText{20, "The system cannot find the device specified."},
    CodeText{21, "The device is not ready."},
    CodeText{22, "The device does not recognize the command."},
    CodeText{32, "The process cannot access the file because it is being used by another process."},
    CodeText{33, "The process cannot access the file because another process has locked a portion of the file."},
    // Not the system's own code for this text: docs/oddities.md, 11.
    CodeText{37, "The specified network resource or device is no longer available."},
    CodeText{108, "The disk is in use or locked by another process."},
};

const char* text_of(std::span<const CodeText> table, std::uint32_t code) {
  const auto row =
      std::find_if(table.begin(), table.end(), [code](const CodeText& entry) { return entry.code == code; });
  return row == table.end() ? nullptr : row->text;
}

}  // namespace

std::string GetErrMsg(std::uint32_t code) {
  const char* const own = text_of(kTransferTexts, code);
  return own != nullptr ? own : SystemErrorText(code);
}

std::string SystemErrorText(std::uint32_t code) {
  // winbase.h: FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK.
  constexpr std::uint32_t kFromSystemOneLine = 0x12FF;
  std::array<char, 260> text{};
  const std::uint32_t length =
      kernel32::FormatMessageA(kFromSystemOneLine, code, text.data(), static_cast<std::uint32_t>(text.size()));
  if (length == 0) return "(No such error)";
  return {text.data(), std::min<std::size_t>(length, text.size())};
}

std::string coded_error_text(std::uint32_t code) {
  return "error " + std::to_string(code) + " - " + SystemErrorText(code);
}

std::string open_error_text(std::uint32_t code) {
  const char* const own = text_of(kOpenTexts, code);
  return own != nullptr ? own : "";
}
