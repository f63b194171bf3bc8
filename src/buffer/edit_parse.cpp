#include "buffer/edit_parse.h"

#include <algorithm>
#include <array>
#include <optional>

#include "buffer/hex_text.h"

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kSectorHeader = "[Sector";
constexpr std::string_view kEndMark = "END OF SECTOR DATA";
constexpr int kHeaderScanLines = 20'000;

constexpr std::size_t kOffsetDigits = 4;
constexpr std::size_t kLineBytes = 16;
constexpr std::size_t kLargestOffset = 0xFFFF;
// The columns that hex_view() gives the bytes of a line, from 0.
constexpr std::array<std::size_t, kLineBytes> kFieldColumns{5,  8,  11, 14, 17, 20, 23, 26,
                                                            31, 34, 37, 40, 43, 46, 49, 52};

/// Takes the line at the start of `rest` off it; nothing when no line end is left.
std::optional<std::string_view> next_line(std::string_view& rest) {
  const std::size_t end = rest.find(kLineEnd);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end + kLineEnd.size());
  return line;
}

bool ends_view(std::string_view line) {
  return line.find(kEndMark) != std::string_view::npos;
}

/// The offset that opens `line`, or nothing for a line that is passed over. A line shorter than an offset counts as one
/// when all of it is hexadecimal.
std::optional<std::size_t> offset_of(std::string_view line) {
  std::size_t offset = 0;
  for (const char c : line.substr(0, kOffsetDigits)) {
    const int digit = hex_value(c);
    if (digit < 0) return std::nullopt;
    offset = offset * 16 + static_cast<std::size_t>(digit);
  }
  return offset;
}

/// What the lines named so far.
struct Named {
  std::vector<std::uint8_t>& bytes;
  std::vector<bool> at;  // true where a line gave the byte
};

/// Stores the bytes of `line` from `address` on, which moves along. False at the first field that is bad or past the
/// end.
bool store_line(std::string_view line, Named& named, std::size_t& address) {
  for (const std::size_t column : kFieldColumns) {
    if (address >= named.bytes.size() || line.size() < column + 2) return false;
    const int value = hex_pair_value(line[column], line[column + 1]);
    if (value < 0) return false;
    named.at[address] = true;
    named.bytes[address++] = static_cast<std::uint8_t>(value);
  }
  return true;
}

/// True when no byte before the last line's end is left to chance; else `address` is the first one that is.
bool lacks_no_line(const Named& named, std::size_t& address) {
  const auto end = named.at.begin() + static_cast<std::ptrdiff_t>(address);
  const auto gap = std::find(named.at.begin(), end, false);
  if (gap == end) return true;
  address = static_cast<std::size_t>(gap - named.at.begin());
  return false;
}

/// Takes the lines up to the first sector header off `rest`.
EditOutcome skip_to_sector(std::string_view& rest) {
  for (int i = 0; i < kHeaderScanLines; ++i) {
    const auto line = next_line(rest);
    if (!line) return EditOutcome::at_address;
    if (line->starts_with(kSectorHeader)) return EditOutcome::ok;
  }
  return EditOutcome::silent;
}

/// Takes the lines that follow an empty one off `rest` as long as they are empty too. The view has empty lines before a
/// sector's header and before its end and nowhere else: false when something else follows.
bool skip_empty_lines(std::string_view& rest) {
  while (rest.starts_with(kLineEnd)) rest.remove_prefix(kLineEnd.size());
  if (rest.starts_with(kSectorHeader)) return true;
  return ends_view(rest.substr(0, rest.find(kLineEnd)));
}

bool parse_lines(std::string_view rest, EditParse& parse) {
  Named named{parse.bytes, std::vector<bool>(parse.bytes.size())};
  for (;;) {
    const auto line = next_line(rest);
    if (!line) return false;
    if (ends_view(*line)) return lacks_no_line(named, parse.address);
    if (line->empty()) {
      if (!skip_empty_lines(rest)) return false;
      continue;
    }
    const auto offset = offset_of(*line);
    if (!offset) continue;
    parse.address = *offset;
    if (!store_line(*line, named, parse.address)) return false;
  }
}

}  // namespace

EditParse parse_edit_view(std::string_view text, std::size_t buffer_length) {
  EditParse parse;
  if (buffer_length == 0) return parse;
  parse.outcome = skip_to_sector(text);
  if (parse.outcome != EditOutcome::ok) return parse;
  // Four digits of offset reach no further than this, however large the buffer is.
  parse.bytes.resize(std::min(buffer_length, kLargestOffset + kLineBytes));
  if (!parse_lines(text, parse)) {
    parse.outcome = EditOutcome::at_address;
    parse.bytes.clear();
    return parse;
  }
  constexpr std::size_t kNoLines = 2;  // less than a sector: the caller stops there
  parse.bytes.resize(parse.address > 0 ? parse.address : kNoLines);
  return parse;
}

std::string edit_error_text(std::size_t address) {
  return "ERROR NEAR ADDRESS " + hex_padded(address, 1) + " HEX";
}

EditChanges list_changes(std::span<const std::uint8_t> buffer, std::span<const std::uint8_t> edited) {
  EditChanges changes;
  for (std::size_t i = 0; i < std::min(buffer.size(), edited.size()); ++i) {
    if (buffer[i] == edited[i]) continue;
    ++changes.count;
    changes.lines += "Byte at address " + hex_padded(i, kOffsetDigits) + " Hex was " + hex_padded(buffer[i], 2) +
                     " now " + hex_padded(edited[i], 2) + "\r\n";
  }
  return changes;
}
