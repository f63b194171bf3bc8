// What goes to a disk, and what must not.

#include <gmock/gmock.h>

#include "app/handlers.h"
#include "buffer/edit.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Writing : public Rig {
 protected:
  Writing() : pristine_(read_file(write_image("a.img", 100))) {}

  /// Runs the program with /OP on drive 0, the image with `directives` more.
  std::uint32_t run_op(const std::string& switches, const std::string& directives = "") {
    return start("/VDISK:0=" + disk_file(directives) + " /D:0 " + switches);
  }
  void open_window(const std::string& directives = "") { open("/VDISK:0=" + disk_file(directives)); }

  std::string disk_file(const std::string& directives) {
    return write_file("d.vd", "image a.img\nserial S123\n" + directives);
  }
  std::string sector(std::int64_t lba) const {
    return read_file(path("a.img")).substr(static_cast<std::size_t>(lba * kSectorSize), kSectorSize);
  }
  bool untouched() const { return read_file(path("a.img")) == pristine_; }

  std::string pristine_;
};

TEST_F(Writing, ThePatternGoesToExactlyTheSectorsOfTheRun) {
  EXPECT_EQ(run_op("/OP:WRITE /SERIAL:S123 /START:7 /COUNT:3 /PATTERN:01020304"), 0U);
  const std::string before = sector(6);
  const std::string after = sector(10);
  std::string expected;
  while (expected.size() < 512) expected += "\x01\x02\x03\x04";
  for (const std::int64_t lba : {7, 8, 9}) EXPECT_EQ(sector(lba), expected);
  EXPECT_THAT(before, StartsWith("6 6 "));
  EXPECT_THAT(after, StartsWith("10 10 "));
  EXPECT_THAT(out(), HasSubstr("Writing 3 sectors starting at LBA 7 on drive 0\r\n"));
}

TEST_F(Writing, AWrongDriveOrAMistakeLeavesTheDiskAlone) {
  for (const std::string switches :
       {"/OP:WRITE /START:7", "/OP:WRITE /SERIAL:OTHER", "/OP:WRITE /SERIAL:S123 /PATTERN:12G4",
        "/OP:WRITE /SERIAL:S123 /PATTERN:123", "/OP:WRITE /SERIAL:", "/OP:RANDOMWRITE /SERIAL:X"}) {
    headless::desktop = {};
    EXPECT_EQ(run_op(switches), 1U) << switches;
    EXPECT_EQ(count_of(err(), "\n"), 1) << switches << ": " << err();
    EXPECT_TRUE(untouched()) << switches;
    EXPECT_EQ(virtualdisk::open_handles(), 0) << switches;
  }
}

TEST_F(Writing, ARealDiskIsRefusedUnlessWindowsIsKnownToRunFromAnother) {
  // No virtual disk here: the drive is not found, or it may not be written to; it is never locked or written.
  EXPECT_EQ(start("/D:1 /OP:WRITE /SERIAL:S"), 1U);
  EXPECT_EQ(count_of(headless::desktop.debug, "FSCTL"), 0);
}

TEST_F(Writing, TheQuestionNamesTheDiskAndCancelLeavesEverythingAlone) {
  open_window();
  form1.Text1.set_text("as it was");
  headless::desktop.answers = {"CANCEL"};
  click(CmdWrite_Click);
  ASSERT_EQ(headless::desktop.boxes.size(), 1U);
  EXPECT_EQ(headless::desktop.boxes[0].title, "WIPE DRIVE?");
  EXPECT_EQ(headless::desktop.boxes[0].text, "Warning: This Disk 0 Write operation will overwrite all existing data!");
  EXPECT_EQ(form1.Text1.text(), "as it was");
  EXPECT_TRUE(untouched());
}

TEST_F(Writing, TheVolumesAreLockedAroundTheWrite) {
  open_window("volume E:\n");
  range("1", "1");
  headless::desktop.answers = {"OK"};
  click(CmdWrite_Click);
  const std::string& trace = headless::desktop.debug;
  EXPECT_LT(trace.find("Volume E: locked"), trace.find("Volume unlocked"));
  EXPECT_EQ(count_of(trace, "FSCTL_DISMOUNT_VOLUME - Dismounted volume "), 2) << "the volume and the drive itself";
  EXPECT_EQ(virtualdisk::open_handles(), 0);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Writing 1 sectors starting at LBA 1 on drive 0\r\nTime taken= "));
}

TEST_F(Writing, ThreeEditedBytesAreListedAskedAboutAndWritten) {
  open_window();
  range("40", "2");
  click(CmdRead_Click);
  click(CmdDisplay_Click);
  std::string text = form1.Text1.text();
  for (const std::string offset : {"0000", "0010", "0200"}) text.replace(text.find("\n" + offset + " ") + 6, 2, "fe");
  form1.Text1.set_typed(text);
  headless::desktop.answers = {"OK", "OK"};
  click(cmdWriteBuffer_Click);
  ASSERT_EQ(headless::desktop.boxes.size(), 2U);
  EXPECT_EQ(headless::desktop.boxes[0].text, "3 bytes edited - OK to overwrite 2 sectors?");
  EXPECT_EQ(headless::desktop.boxes[1].title, "Write 2 sectors starting at sector 40 from the buffer?");
  std::string expected = pristine_;
  for (const std::size_t at : {40 * 512 + 0, 40 * 512 + 16, 41 * 512 + 0}) expected[at] = '\xFE';
  EXPECT_EQ(read_file(path("a.img")), expected);
}

TEST_F(Writing, WhatTheQuestionNamesIsWhatIsWritten) {
  // A search moves the start that the command line gave.
  open("/START:10 /COUNT:30 /VDISK:0=" + disk_file(""));
  EXPECT_EQ(form1.TxtStartLBA.text() + " " + form1.TxtNoSecs.text(), "10 30") << "shown before anything runs";
  headless::desktop.answers = {"t25 25 "};
  click(CmdFind_Click);
  headless::desktop.answers = {"OK"};
  click(cmdWriteBuffer_Click);
  EXPECT_EQ(headless::desktop.boxes.back().title, "Write 30 sectors starting at sector 25 from the buffer?");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Writing 30 sectors starting at LBA 25 on drive 0"));
  EXPECT_EQ(read_file(path("a.img")).substr(0, 25 * 512), pristine_.substr(0, 25 * 512));
}

TEST_F(Writing, WithoutASecondQuestionTheFirstNamesTheRange) {
  open("/D:0 /VDISK:0=" + disk_file(""));
  click(CmdRead_Click);
  range("40", "1");
  click(CmdDisplay_Click);
  std::string text = form1.Text1.text();
  text.replace(text.find("\n0000 ") + 6, 2, "fe");
  for (const char* answer : {"CANCEL", "OK"}) {
    EXPECT_TRUE(untouched());
    form1.Text1.set_typed(text);
    headless::desktop.answers = {answer};
    click(cmdWriteBuffer_Click);
    EXPECT_EQ(headless::desktop.boxes.back().title, "Write 1 sectors starting at sector 40 from the buffer?");
  }
  EXPECT_THAT(sector(39), StartsWith("39 39 "));
  EXPECT_EQ(sector(40)[0], '\xFE') << "the drive was selected again, the range stayed";
  EXPECT_THAT(sector(41), StartsWith("41 41 "));
}

TEST_F(Writing, AnUneditedViewSaysSoAndStillAsksBeforeItWrites) {
  open_window();
  range("40", "20");
  click(CmdRead_Click);
  click(CmdDisplay_Click);
  headless::desktop.answers = {"OK", "CANCEL"};
  click(cmdWriteBuffer_Click);
  EXPECT_EQ(headless::desktop.boxes[0].text, "No changes made to buffer contents");
  EXPECT_TRUE(untouched());
}

TEST_F(Writing, NonsenseInTheViewWritesNothing) {
  open_window();
  range("40", "1");
  click(CmdRead_Click);
  click(CmdDisplay_Click);
  std::string text = form1.Text1.text();
  text.erase(text.find("\n0010 ") + 6, 1);
  form1.Text1.set_typed(text);
  headless::desktop.answers = {"OK"};
  click(cmdWriteBuffer_Click);
  EXPECT_EQ(headless::desktop.boxes[0].text, "ERROR NEAR ADDRESS 10 HEX");
  EXPECT_TRUE(untouched());
}

TEST_F(Writing, TheFillIsBytesLongAndShownAsAPartitionTableToo) {
  open_window();
  form1.TxtPattern.set_text("a5");
  click(CmdFillBuffer_Click);
  EXPECT_EQ(disk.Sec_Buf.size(), 8225280);
  EXPECT_EQ(disk.Buf_Secs, 8225280);
  EXPECT_EQ(form1.TxtStatus.text(), "Buffer filled with A5 OK.");
  click(CmdDisplay_Click);
  EXPECT_EQ(count_of(form1.Text1.text(), "[Sector "), 20);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Type: A5 "));
}

}  // namespace
