#include "buffer/edit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "buffer/display.h"
#include "buffer/hex_view.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "tests/support/rig.h"

namespace {

using headless::desktop;
using testing::HasSubstr;
using testing::Not;

std::string nowhere() {
  return {};
}

/// A buffer of zeros as a read left it, and a user before the edit view.
struct EditTest : Rig {
  static void read(std::int64_t lba, std::int64_t sectors) {
    disk.Sec_Buf.resize(sectors * 512);
    std::ranges::fill(disk.Sec_Buf.bytes(), std::uint8_t{0});
    disk.Buf_LBA = lba;
    disk.Buf_Secs = sectors;
  }
  static void type_over(const std::string& old_text, const std::string& new_text) {
    std::string text = form1.Text1.text();
    text.replace(text.find(old_text), old_text.size(), new_text);
    form1.Text1.set_typed(text);
  }
};

TEST_F(EditTest, ShowsNothingWithoutABuffer) {
  form1.Text1.set_text("old");
  show_buffer_for_editing();
  EXPECT_EQ(form1.Text1.text(), "old");
  EXPECT_FALSE(take_edits(nowhere));
}

TEST_F(EditTest, ShowsThePartitionTableOfLba0Only) {
  read(0, 1);
  show_buffer_for_editing();
  EXPECT_THAT(form1.Text1.text(), HasSubstr("END OF SECTOR DATA ================\r\n\r\n\r\nPartition 1 "));
  EXPECT_EQ(form1.Text1.caret(), form1.Text1.text().size());
  Display_Sec_Buf();
  EXPECT_LT(form1.Text1.caret(), form1.Text1.text().size());
  read(1, 1);
  show_buffer_for_editing();
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("Partition")));
}

TEST_F(EditTest, TakesEditsAfterOneQuestion) {
  read(4096, 128);
  show_buffer_for_editing();
  type_over("\r\n27F0 00 00", "\r\n27F0 4a 00");
  desktop.answers = {"OK"};
  EXPECT_TRUE(take_edits(nowhere));
  EXPECT_EQ(desktop.boxes.at(0).text, "1 bytes edited - OK to overwrite 20 sectors?");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Byte at address 27F0 Hex was 00 now 4A\r\n"));
  EXPECT_EQ(disk.Sec_Buf.data()[0x27F0], 0x4A);
  EXPECT_EQ(disk.Sec_Buf.size(), 128 * 512);
}

TEST_F(EditTest, LeavesTheBufferOnCancelAndOnErrors) {
  read(4096, 2);
  show_buffer_for_editing();
  type_over("0010 00", "0010 41");
  desktop.answers = {"CANCEL", "OK"};
  EXPECT_FALSE(take_edits(nowhere));
  show_buffer_for_editing();
  type_over("0010 00", "0010 0");
  EXPECT_FALSE(take_edits(nowhere));
  EXPECT_EQ(desktop.boxes.at(1).text, "ERROR NEAR ADDRESS 10 HEX");
  EXPECT_EQ(disk.Sec_Buf.data()[0x10], 0);
}

TEST_F(EditTest, WritesUneditedBuffersAllTheSame) {
  read(4096, 1);
  Display_Sec_Buf();
  EXPECT_TRUE(take_edits(nowhere));
  show_buffer_for_editing();
  desktop.answers = {"OK"};
  EXPECT_TRUE(take_edits(nowhere));
  EXPECT_EQ(desktop.boxes.at(0).text, "No changes made to buffer contents");
}

TEST_F(EditTest, StopsSilentlyAtPartOfASector) {
  read(4096, 1);
  show_buffer_for_editing();
  std::string text = form1.Text1.text();
  text.erase(text.find("01F0 "), 75);
  form1.Text1.set_typed(text);
  EXPECT_FALSE(take_edits(nowhere));
  EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(EditTest, ChangesSingleBytes) {
  read(4096, 1);
  desktop.answers = {"12345", "OK", "xy", "OK", "200", "OK", "1fe", "123", "OK", "g", "OK", "a", "BC", ""};
  Edit_Buffer_Byte();
  std::vector<std::string> told;
  for (const auto& box : desktop.boxes) {
    if (box.text.starts_with("Error")) told.push_back(box.text);
  }
  EXPECT_THAT(told, testing::ElementsAre("Error: please use 1-4 hex characters for the address",
                                         "Error: Please use valid hex characters!", "Error: invalid address!",
                                         "Error: please use 1-2 hex characters for the address",
                                         "Error: Invalid hex characters!"));
  EXPECT_EQ(desktop.boxes.at(0).text, "Enter address (0-01FF) in hex");
  EXPECT_EQ(desktop.boxes.at(7).title, "ADDRESS=01FEh");
  EXPECT_EQ(disk.Sec_Buf.data()[0x1FE], 0x0A);
  EXPECT_EQ(disk.Sec_Buf.data()[0x1FF], 0xBC);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("00 0A BC  "));
}

TEST_F(EditTest, HasNoByteToChangeWithoutABuffer) {
  desktop.answers = {"OK"};
  Edit_Buffer_Byte();
  EXPECT_EQ(desktop.boxes.at(0).text, "Error: Data Buffer is empty!");
}

TEST_F(EditTest, FillsTheBuffer) {
  form1.TxtPattern.set_text("a5b");
  fill_buffer();
  EXPECT_EQ(form1.TxtPattern.text(), "A5");
  EXPECT_EQ(form1.TxtStatus.text(), "Buffer filled with A5 OK.");
  EXPECT_EQ(disk.Buf_Secs, 8'225'280);
  EXPECT_EQ(std::ranges::count(disk.Sec_Buf.bytes(), 0xA5), 8'225'280);
  form1.TxtPattern.set_text("12G4");
  desktop.answers = {"OK"};
  fill_buffer();
  EXPECT_EQ(form1.TxtPattern.text(), "2C2CAA55");
}

}  // namespace
