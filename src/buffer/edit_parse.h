#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Reading the edited hex view back.

enum class EditOutcome : std::uint8_t {
  ok,
  silent,      // nothing to parse into, or no sector header among the first 20,000 lines: nobody is told
  at_address,  // the text is not an edit view near `address`
};

struct EditParse {
  EditOutcome outcome = EditOutcome::silent;
  std::size_t address = 0;          // where the bytes of the last line ended; of the first field that is bad or missing
  std::vector<std::uint8_t> bytes;  // when ok: as long as the last line's end; 2 bytes when there was no line
};

/// Parses `text`, lines separated by CR LF, into at most `buffer_length` bytes. The offset column decides where a
/// line's bytes go, in whatever order they stand. An offset past the buffer fails at that address, a view that lacks a
/// line at the first byte that no line names. Linear in the text.
EditParse parse_edit_view(std::string_view text, std::size_t buffer_length);

/// What the user is told of a parse that failed at an address.
std::string edit_error_text(std::size_t address);

struct EditChanges {
  std::int64_t count = 0;
  std::string lines;  // one for each byte changed, each with a line end
};

/// Lists the bytes of `edited` that differ from those of `buffer` at the same index, as far as both reach.
EditChanges list_changes(std::span<const std::uint8_t> buffer, std::span<const std::uint8_t> edited);
