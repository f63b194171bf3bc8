#include "buffer/edit_parse.h"

#include <gtest/gtest.h>

#include <random>

#include "buffer/hex_view.h"

namespace {

/// An edit view in the text box, and what the user does to it.
struct EditParseTest : testing::Test {
  std::vector<std::uint8_t> bytes;
  std::string text;

  void show(std::size_t sectors, std::int64_t lba = 0) {
    std::mt19937 random(7);
    bytes.resize(sectors * 512);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    text = "Older text" + hex_view(bytes, lba, static_cast<std::int64_t>(sectors), kEditTitle);
  }
  std::size_t line(const std::string& offset) const { return text.find("\r\n" + offset + " ") + 2; }
  void overwrite(const std::string& offset, std::size_t column, const std::string& with) {
    text.replace(line(offset) + column - 1, with.size(), with);
  }
  void delete_line(const std::string& offset) {
    const std::size_t at = line(offset);
    text.erase(at, text.find("\r\n", at) + 2 - at);
  }
  EditParse parse() const { return parse_edit_view(text, bytes.size()); }
  void expect_error(std::size_t address) const {
    EXPECT_EQ(parse().outcome, EditOutcome::at_address);
    EXPECT_EQ(parse().address, address);
  }
};

TEST_F(EditParseTest, ReadsAnUneditedViewBack) {
  for (const std::size_t sectors : {1, 2, 20}) {
    for (const std::int64_t lba : {0, 4096}) {
      show(sectors, lba);
      EXPECT_EQ(parse().outcome, EditOutcome::ok);
      EXPECT_EQ(parse().bytes, bytes) << sectors << " sectors at " << lba;
    }
  }
}

TEST_F(EditParseTest, KeepsToTheSectorsShown) {
  show(128);
  EXPECT_EQ(parse().bytes, std::vector(bytes.begin(), bytes.begin() + 10'240));
}

TEST_F(EditParseTest, ListsTheBytesChanged) {
  show(1);
  bytes[0] = 0x41;
  text = hex_view(bytes, 0, 1, kEditTitle);
  overwrite("0000", 6, "4a");
  overwrite("01F0", 53, bytes[511] == 0 ? "01" : "00");
  const EditChanges changes = list_changes(bytes, parse().bytes);
  EXPECT_EQ(changes.count, 2);
  EXPECT_EQ(changes.lines.find("Byte at address 0000 Hex was 41 now 4A\r\nByte at address 01FF Hex was "), 0U);
}

TEST_F(EditParseTest, FailsAtTheFirstBadField) {
  show(2);
  text.erase(line("0120") + 8, 1);  // all fields from the second on are shifted
  expect_error(0x121);
  EXPECT_EQ(edit_error_text(0x121), "ERROR NEAR ADDRESS 121 HEX");
  show(2);
  overwrite("0120", 32, "G");
  expect_error(0x128);
  show(2);
  text.erase(line("0120") + 53 - 1);  // the text ends in the middle of a line
  expect_error(0x120);
}

TEST_F(EditParseTest, FollowsTheOffsetColumn) {
  show(1);
  overwrite("0100", 1, "0110");
  text.replace(text.rfind("\r\n0110") + 2, 4, "0100");
  std::swap_ranges(bytes.begin() + 0x100, bytes.begin() + 0x110, bytes.begin() + 0x110);
  EXPECT_EQ(parse().bytes, bytes) << "lines may change their places";
  show(1);
  overwrite("01F0", 1, "0000");  // the last line decides how long the bytes are
  EXPECT_EQ(parse().bytes, std::vector(bytes.end() - 16, bytes.end()));
  overwrite("0010", 1, "01f8");
  expect_error(0x200);
  overwrite("01f8", 1, "FFFF");
  expect_error(0xFFFF);
}

TEST_F(EditParseTest, FailsWhereALineIsMissing) {
  for (const std::string offset : {"0000", "0100", "01E0", "0200", "03E0"}) {
    show(2);
    delete_line(offset);
    expect_error(std::stoul(offset, nullptr, 16));
    EXPECT_TRUE(parse().bytes.empty());
  }
  // Two lines that became one, as when a line's end is lost.
  show(2);
  text.erase(line("0110") - 2, 2);
  expect_error(0x110);
}

TEST_F(EditParseTest, PassesForeignLinesOverButNotEmptyOnes) {
  show(2);
  text.insert(line("0100"), "my own remark\r\n");
  text.insert(text.find("[Sector 1]"), "\r\n\r\n");
  EXPECT_EQ(parse().bytes, bytes);
  text.insert(line("0100"), "\r\n");
  expect_error(0x100);
}

TEST_F(EditParseTest, SurvivesAnyText) {
  bytes.resize(512);
  text = "no line end";
  expect_error(0);
  for (const std::string unit : {"\r", "\r\n", "E", "[Sector\r\n", "\r\n[Sector", "0000\r\n", "zzzz\r\n\r\n"}) {
    text = "[Sector\r\n";
    while (text.size() < 1 << 20) text += unit;
    expect_error(0);
  }
  text = "[Sector 0]\r\n== END OF SECTOR DATA\r\n";
  EXPECT_EQ(parse().bytes.size(), 2U);
}

TEST_F(EditParseTest, StaysSilentWhereThereIsNothingToParse) {
  show(1);
  EXPECT_EQ(parse_edit_view(text, 0).outcome, EditOutcome::silent);
  std::string lines;
  for (int i = 0; i < 20'000; ++i) lines += "\r\n";
  EXPECT_EQ(parse_edit_view(lines + text, 512).outcome, EditOutcome::silent);
}

}  // namespace
