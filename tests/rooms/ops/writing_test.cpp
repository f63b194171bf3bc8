// What goes to a disk, and what must not.

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>

#include "app/handlers.h"
#include "buffer/edit.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Writing : public EachSectorSize {
 protected:
  Writing() : pristine_(read_file(write_image("a.img", 104))) {}

  /// Runs the program with /OP on drive 0, the image with `directives` more.
  std::uint32_t run_op(const std::string& switches, const std::string& directives = "") {
    return start("/VDISK:0=" + disk_file(directives) + " /D:0 " + switches);
  }
  void open_window(const std::string& directives = "") { open("/VDISK:0=" + disk_file(directives)); }

  std::string disk_file(const std::string& directives) {
    return write_file("d.vd", "image a.img\nserial S123\n" + directives);
  }
  std::string sector(std::int64_t lba) const {
    return read_file(path("a.img")).substr(static_cast<std::size_t>(lba * SectorSize), SectorSize);
  }
  bool untouched() const { return read_file(path("a.img")) == pristine_; }

  std::string pristine_;
};

TEST_P(Writing, ThePatternGoesToExactlyTheSectorsOfTheRun) {
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

TEST_P(Writing, AWrongDriveOrAMistakeLeavesTheDiskAlone) {
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

TEST_P(Writing, ARealDiskIsRefusedUnlessWindowsIsKnownToRunFromAnother) {
  // No virtual disk here: the drive is not found, or it may not be written to; it is never locked or written.
  EXPECT_EQ(start("/D:1 /OP:WRITE /SERIAL:S"), 1U);
  EXPECT_EQ(count_of(headless::desktop.debug, "FSCTL"), 0);
}

TEST_P(Writing, TheQuestionNamesTheDiskAndCancelLeavesEverythingAlone) {
  open_window();
  form1.Text1.set_text("as it was");
  headless::desktop.answers = {"CANCEL"};
  click(CmdWrite_Click);
  ASSERT_EQ(headless::desktop.boxes.size(), 1U);
  EXPECT_EQ(headless::desktop.boxes[0].title, "WIPE DRIVE?");
  EXPECT_EQ(headless::desktop.boxes[0].text,
            "Warning: This Disk 0 Write operation will overwrite all existing data!\r\n\r\nModel: Virtual disk\r\n"
            "Serial number: S123\r\nSize: 104 sectors, 0Mb" +
                std::string(long_sectors() ? " (sectors of 4096 bytes: each is 8 sectors of 512)" : "") +
                "\r\nVirtual disk: " + path("d.vd") + "\r\nLBA 0 to 103, 104 sectors");
  EXPECT_EQ(form1.Text1.text(), "as it was");
  EXPECT_TRUE(untouched());
}

TEST_P(Writing, TheVolumesAreLockedAroundTheWrite) {
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

TEST_P(Writing, ThreeEditedBytesAreListedAskedAboutAndWritten) {
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
  EXPECT_THAT(headless::desktop.boxes[0].text,
              StartsWith("3 bytes edited - OK to overwrite 2 sectors?\r\n\r\nModel: "));
  EXPECT_THAT(headless::desktop.boxes[0].text, HasSubstr("\r\nLBA 40 to 41, 2 sectors"));
  EXPECT_EQ(headless::desktop.boxes[1].title, "Write 2 sectors starting at sector 40 from the buffer?");
  std::string expected = pristine_;
  for (const std::size_t at : {40 * 512 + 0, 40 * 512 + 16, 41 * 512 + 0}) expected[at] = '\xFE';
  EXPECT_EQ(read_file(path("a.img")), expected);
}

TEST_P(Writing, WhatTheQuestionNamesIsWhatIsWritten) {
  // A search moves the start that the command line gave.
  open("/START:10 /COUNT:30 /VDISK:0=" + disk_file(""));
  EXPECT_EQ(form1.TxtStartLBA.text() + " " + form1.TxtNoSecs.text(), "10 30") << "shown before anything runs";
  headless::desktop.answers = {"t25 25 "};
  click(CmdFind_Click);
  headless::desktop.answers = {"OK", "OK"};
  click(cmdWriteBuffer_Click);
  EXPECT_EQ(headless::desktop.boxes[1].title, "Write 30 sectors starting at sector 25 from the buffer?");
  EXPECT_EQ(headless::desktop.boxes[2].text,
            "The buffer holds LBA 25 to 25 of drive 0 (serial number S123).\r\n"
            "It is about to be written to LBA 25 to 54 of drive 0 (serial number S123).");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Writing 30 sectors starting at LBA 25 on drive 0"));
  EXPECT_EQ(read_file(path("a.img")).substr(0, 25 * 512), pristine_.substr(0, 25 * 512));
}

TEST_P(Writing, WithoutASecondQuestionTheFirstNamesTheRange) {
  open("/D:0 /START:40 /COUNT:1 /VDISK:0=" + disk_file(""));
  click(CmdRead_Click);
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

TEST_P(Writing, ARangeThatIsNoPlainNumberStopsBeforeAnyQuestion) {
  open_window();
  range("40", "1");
  click(CmdRead_Click);
  const std::vector<std::pair<std::string, std::string>> ranges = {
      {"1,000", "1"}, {"0x20", "1"}, {"2.5", "1"}, {"abc", "1"}, {"", "1"},         {"-1", "1"},
      {" 4", "1"},    {"+4", "1"},   {"4", "1e2"}, {"4", ""},    {"4", "1 sector"}, {"99999999999999999999", "1"}};
  for (const auto& [start, count] : ranges) {
    for (void (*button)() : {CmdWrite_Click, cmdWriteBuffer_Click}) {
      headless::desktop.boxes.clear();
      headless::desktop.answers = {"OK"};
      range(start, count);
      click(button);
      ASSERT_EQ(headless::desktop.boxes.size(), 1U) << start << " " << count;
      const std::string field = count == "1" ? "Start: \"" + start + "\"" : "No. Sectors: \"" + count + "\"";
      EXPECT_EQ(headless::desktop.boxes[0].text,
                field + " is not a plain decimal number. Nothing was written; please correct it.");
      EXPECT_EQ(form1.TxtStartLBA.text() + " " + form1.TxtNoSecs.text(), start + " " + count) << "as typed";
      EXPECT_TRUE(untouched()) << start << " " << count;
    }
  }
  range("x", "1");
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Reading 1 sectors starting at LBA 0 on drive 0"))
      << "a read takes it for 0";
}

TEST_P(Writing, ABadPatternIsToldAndTheNextPressTakesTheOneInTheField) {
  open_window();
  form1.TxtPattern.set_text("12G4");
  headless::desktop.answers = {"OK"};
  click(CmdWrite_Click);
  EXPECT_EQ(headless::desktop.boxes.at(0).text, "Please use Hexadecimal characters only (0-9,A-F)");
  EXPECT_TRUE(untouched());
  EXPECT_EQ(form1.TxtPattern.text(), "2C2CAA55");
  form1.TxtPattern.set_text("12G4");
  headless::desktop.answers = {"OK", "3", "4", "OK"};
  click(Cmd_Destructive_Random_Write);
  EXPECT_TRUE(untouched()) << "the destructive test ends behind the box too";
  headless::desktop.answers = {"OK"};
  range("5", "1");
  click(CmdWrite_Click);
  EXPECT_THAT(sector(5), StartsWith("\x2C\x2C\xAA\x55"));
}

/// What the buffer's origin and the range in the fields make of a press on WRITE using Buffer.
TEST_P(Writing, TheBufferOfAnotherPlaceIsWrittenAfterOneMoreQuestionOnly) {
  write_image("b.img", 40000);
  const std::string large = "/VDISK:1=" + write_file("b.vd", "image b.img\nserial LARGE\n");
  struct Case {
    const char* read_start;
    const char* read_count;
    int write_drive;
    const char* write_start;
    const char* write_count;
    std::string told;  // empty: written without another question
  };
  const std::vector<Case> cases = {
      {"7", "3", 1, "7", "3", ""},
      {"7", "3", 1, "7", "2", ""},
      {"7", "3", 1, "8", "1", "LBA 7 to 9 of drive 1 (serial number LARGE)"},
      {"7", "3", 1, "7", "4", "LBA 7 to 9 of drive 1 (serial number LARGE)"},
      {"7", "3", 0, "7", "3", "LBA 7 to 9 of drive 1 (serial number LARGE)"},
      {"0", "40000", 1, "0", "40000", "LBA 20480 to 39999 of drive 1 (serial number LARGE)"},
      {"0", "20480", 1, "0", "20480", "LBA 0 to 20479 of drive 1 (serial number LARGE)"},
  };
  for (const std::string mode : {"", "/D:1 "}) {
    for (const Case& one : cases) {
      virtualdisk::detach_all();
      open(mode + large + " /VDISK:0=" + disk_file(""));
      click(Option2_Click);
      range(one.read_start, one.read_count);
      TxtStartLBA_Click();
      click(CmdRead_Click);
      if (one.write_drive == 0) click(Option1_Click);
      range(one.write_start, one.write_count);
      TxtStartLBA_Click();
      headless::desktop.boxes.clear();
      headless::desktop.answers = {"OK", "CANCEL"};
      if (!mode.empty()) headless::desktop.answers.pop_front();
      form1.Text1.set_text({});
      click(cmdWriteBuffer_Click);
      const bool asks = !one.told.empty();
      const std::size_t usual = mode.empty() ? 1 : 0;
      ASSERT_EQ(headless::desktop.boxes.size(), usual + (asks ? 1 : 0)) << mode << one.write_start << one.told;
      if (asks) {
        EXPECT_EQ(headless::desktop.boxes.back().title, "WRITE TO ANOTHER PLACE?");
        EXPECT_THAT(headless::desktop.boxes.back().text, HasSubstr(one.told));
        EXPECT_THAT(headless::desktop.boxes.back().text,
                    HasSubstr(std::string("written to LBA ") + one.write_start + " to "));
      }
      EXPECT_EQ(form1.Text1.text().find("Writing ") != std::string::npos, !asks) << one.told;
    }
  }
}

TEST_P(Writing, ABufferThatWasNotReadIsNotTakenForSectors) {
  open_window("fail read 8 8\n");
  range("8", "8");
  click(CmdRead_Click);
  headless::desktop.answers = {"OK", "CANCEL"};
  click(cmdWriteBuffer_Click);
  EXPECT_THAT(headless::desktop.boxes.back().text, StartsWith("The buffer holds nothing that was read.\r\n"));
  EXPECT_TRUE(untouched());
  click(CmdFillBuffer_Click);
  headless::desktop.answers = {"OK"};
  click(cmdWriteBuffer_Click);
  EXPECT_THAT(sector(8), StartsWith("\x2C\x2C\xAA\x55")) << "a pattern has no place of its own";
}

TEST_P(Writing, BehindARefusedChunkNoRemainderIsWritten) {
  const std::string pristine = read_file(write_image("b.img", 16072));
  open("/VDISK:0=" + write_file("b.vd", "image b.img\n"));
  range("5", "1");
  click(CmdRead_Click);
  range("0", "16066");
  headless::desktop.answers = {"OK", "OK"};
  click(cmdWriteBuffer_Click);
  EXPECT_EQ(count_of(form1.Text1.text(), "ERROR: 13 "), 1);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_TOTERR=1"));
  EXPECT_TRUE(read_file(path("b.img")) == pristine);
}

TEST_P(Writing, ADriveThatChangedBehindTheQuestionIsNotWrittenTo) {
  open_window();
  virtualdisk::detach_all();
  write_file("d.vd", "sectors 104\nserial S123\n");
  ASSERT_EQ(virtualdisk::attach(0, path("d.vd")), "");
  headless::desktop.answers = {"OK", "OK"};
  headless::desktop.at_box = [] {
    virtualdisk::detach_all();
    ASSERT_EQ(virtualdisk::attach(0, write_file("e.vd", "image a.img\nserial S124\n")), "");
  };
  click(CmdWrite_Click);
  EXPECT_THAT(headless::desktop.boxes.back().text, StartsWith("Drive 0 is not the one that the question named"));
  EXPECT_TRUE(untouched());
}

TEST_P(Writing, OneProgramAtATimeWritesToADrive) {
  std::string name = path("a.img");
  std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
  headless::desktop.foreign_names = {"Global\\Sectorix-" + name};
  EXPECT_EQ(run_op("/OP:WRITE /SERIAL:S123"), 1U);
  EXPECT_THAT(err(), HasSubstr("Another Sectorix is writing to drive 0: nothing was done.\r\n"));
  EXPECT_THAT(out(), HasSubstr("Another Sectorix is writing to drive 0: nothing was done.\r\n"));
  EXPECT_TRUE(untouched());
  EXPECT_EQ(run_op("/OP:READ"), 0U) << "a reader is not in its way";
  headless::desktop.foreign_names.clear();
  EXPECT_EQ(run_op("/OP:WRITE /SERIAL:S123"), 0U);
  EXPECT_EQ(headless::desktop.open_files, 2) << "the image and its disk file: the name was given back";
}

TEST_P(Writing, ARefusedWriteShowsNothingOfTheCommandBefore) {
  open_window("slow 0 104 2000\n");
  range("0", "104");
  click(CmdRead_Click);
  progress.SlowXfers = 3;
  progress.HighRate = 55.5;
  std::string name = path("a.img");
  std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
  headless::desktop.foreign_names = {"Global\\Sectorix-" + name};
  headless::desktop.answers = {"OK", "OK"};
  click(CmdWrite_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_XFER_RATE_AV=0\r\nSET QV_D_XFER_RATE_L=999999\r\n"
                                            "SET QV_D_XFER_RATE_H=0\r\nSET QV_D_SLOW_XFERS=0\r\n"));
  EXPECT_EQ(counters.Sectors_Done, 0);
}

TEST_P(Writing, TheCaptionTellsAWindowThatWritesWithoutAsking) {
  open_window();
  EXPECT_EQ(form1.Caption.text(), "Sectorix v.1.0.0 - disk read, write and test");
  open("/D:0 /VDISK:0=" + disk_file(""));
  const std::string mark = " - COMMAND-LINE MODE: writes without asking";
  EXPECT_EQ(form1.Caption.text(), "Sectorix v.1.0.0 - disk read, write and test" + mark);
  cmdCancel_Click();
  EXPECT_EQ(form1.Caption.text(), "Sectorix v.1.0.0 - disk read, write and test");
}

TEST_P(Writing, AnUneditedViewSaysSoAndStillAsksBeforeItWrites) {
  open_window();
  range("40", "20");
  click(CmdRead_Click);
  click(CmdDisplay_Click);
  headless::desktop.answers = {"OK", "CANCEL"};
  click(cmdWriteBuffer_Click);
  EXPECT_EQ(headless::desktop.boxes[0].text, "No changes made to buffer contents");
  EXPECT_TRUE(untouched());
}

TEST_P(Writing, NonsenseInTheViewWritesNothing) {
  open_window();
  range("40", "1");
  click(CmdRead_Click);
  click(CmdDisplay_Click);
  std::string text = form1.Text1.text();
  text.erase(text.find("\n0010 ") + 6, 1);
  form1.Text1.set_typed(text);
  headless::desktop.answers = {"OK"};
  headless::desktop.calls.clear();
  click(cmdWriteBuffer_Click);
  EXPECT_EQ(headless::desktop.boxes[0].text, "ERROR NEAR ADDRESS 10 HEX");
  EXPECT_TRUE(untouched());
  EXPECT_THAT(headless::desktop.calls, testing::IsEmpty()) << "the drive is opened for the question only";
}

TEST_P(Writing, TheFillIsBytesLongAndShownAsAPartitionTableToo) {
  open_window();
  range("40", "8");
  click(CmdRead_Click);
  form1.TxtPattern.set_text("a5");
  click(CmdFillBuffer_Click);
  EXPECT_EQ(disk.Sec_Buf.size(), 8225280);
  EXPECT_EQ(disk.Buf_Secs, 8225280);
  EXPECT_EQ(disk.Buf_LBA, 0);
  EXPECT_EQ(form1.TxtStatus.text(), "Buffer filled with A5 OK.");
  click(CmdDisplay_Click);
  EXPECT_EQ(count_of(form1.Text1.text(), "[Sector "), 20);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Type: A5 "));
}

ON_EACH_SECTOR_SIZE(Writing);

}  // namespace
