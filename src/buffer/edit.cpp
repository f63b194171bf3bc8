#include "buffer/edit.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

#include "buffer/display.h"
#include "buffer/edit_parse.h"
#include "buffer/hex_text.h"
#include "buffer/hex_view.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"

namespace {

constexpr std::int64_t kLastEditable = 10'240;
constexpr std::size_t kAddressDigits = 4;
constexpr std::size_t kByteDigits = 2;

/// What an answer of hexadecimal digits may be, and what a user who gave another one is told.
struct HexRule {
  std::size_t digits;
  const char* wrong_length;
  const char* not_hex;
};
constexpr HexRule kAddressRule{kAddressDigits, "Error: please use 1-4 hex characters for the address",
                               "Error: Please use valid hex characters!"};
// The text names the address although a byte is asked for: docs/oddities.md, 10.
constexpr HexRule kByteRule{kByteDigits, "Error: please use 1-2 hex characters for the address",
                            "Error: Invalid hex characters!"};

/// The value of `answer`; nothing when it breaks the rule, which is told.
std::optional<std::int64_t> value_of(std::string answer, const HexRule& rule) {
  if (answer.size() > rule.digits) {
    tell_user(rule.wrong_length);
    return std::nullopt;
  }
  if (!Is_Hex(answer)) {
    tell_user(rule.not_hex);
    return std::nullopt;
  }
  std::int64_t value = 0;
  std::from_chars(answer.data(), answer.data() + answer.size(), value, 16);
  return value;
}

std::string hex_number(std::int64_t value) {
  return NumbertoHex(static_cast<std::uint64_t>(value));
}

/// Asks for the address to go on at; false when the user cancels.
bool ask_address(std::int64_t limit) {
  for (;;) {
    const std::string answer = ask_line("Enter address (0-" + hex_number(limit) + ") in hex", "BUFFER ADDRESS",
                                        hex_number(editor.last_address));
    if (answer.empty()) return false;
    const auto address = value_of(answer, kAddressRule);
    if (!address) continue;
    if (*address <= limit) {
      editor.last_address = *address;
      return true;
    }
    tell_user("Error: invalid address!");
  }
}

/// Asks for the byte at the address and stores it; false when the user cancels.
bool ask_byte() {
  std::uint8_t& byte = disk.Sec_Buf.data()[editor.last_address];
  for (;;) {
    const std::string answer =
        ask_line("Enter hex data byte (00-FF)", "ADDRESS=" + hex_number(editor.last_address) + "h", hex_number(byte));
    if (answer.empty()) return false;
    if (const auto value = value_of(answer, kByteRule)) {
      byte = static_cast<std::uint8_t>(*value);
      return true;
    }
  }
}

void edit_bytes(std::int64_t limit) {
  while (ask_address(limit)) {
    for (; editor.last_address <= limit; ++editor.last_address) {
      if (!ask_byte()) return;
    }
  }
}

}  // namespace

bool Get_text_to_Buffer() {
  EditParse parse = parse_edit_view(form1.Text1.text(), static_cast<std::size_t>(disk.Sec_Buf.size()));
  editor.Edit_Buf = std::move(parse.bytes);
  if (parse.outcome == EditOutcome::at_address) tell_user(edit_error_text(parse.address));
  return parse.outcome == EditOutcome::ok;
}

bool take_edits(std::string (*place)()) {
  if (!disk.Sec_Buf.allocated()) return false;
  form1.report_in_front = true;  // whether it holds edits is to be seen
  if (form1.Text1.text().find(kEditMark) == std::string::npos) return true;
  if (!Get_text_to_Buffer()) return false;
  form1.Text1.set_text({});
  Display_Buf(editor.Edit_Buf);

  const std::size_t sectors = editor.Edit_Buf.size() / SectorSize;
  if (sectors == 0 || editor.Edit_Buf.size() % SectorSize != 0) return false;
  const EditChanges changes = list_changes(disk.Sec_Buf.bytes(), editor.Edit_Buf);
  form1.Text1.append(changes.lines);
  form1.Text1.caret_to_end();
  if (changes.count == 0) {
    tell_user("No changes made to buffer contents", platform::BoxIcon::information);
    return true;
  }
  const std::string question = std::to_string(changes.count) + " bytes edited - OK to overwrite " +
                               std::to_string(sectors) + " sectors?" + place();
  // In command-line mode no second question follows: the title of this one tells what is written where.
  if (!ask_user(question, form1.CommandLineMode ? write_buffer_title() : "")) return false;
  std::copy(editor.Edit_Buf.begin(), editor.Edit_Buf.end(), disk.Sec_Buf.data());
  return true;
}

std::string write_buffer_title() {
  return "Write " + form1.TxtNoSecs.text() + " sectors starting at sector " + form1.TxtStartLBA.text() +
         " from the buffer?";
}

void Edit_Buffer_Byte() {
  const std::int64_t limit = std::min(disk.Sec_Buf.size() - 1, kLastEditable);
  if (limit < 1) {
    tell_user("Error: Data Buffer is empty!");
  } else {
    edit_bytes(limit);
  }
  form1.Text1.set_text({});
  show_buffer_for_editing();
}
