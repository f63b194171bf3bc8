#include <gmock/gmock.h>

#include <limits>
#include <set>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "ops/operations.h"
#include "ops/random_choices.h"
#include "smart/identification.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class RandomTests : public EachSectorSize {
 protected:
  /// Runs a test from its button, with these answers to its questions.
  static void press(void (*handler)(), std::deque<std::string> answers) {
    headless::desktop.answers = std::move(answers);
    click(handler);
  }
};

TEST_P(RandomTests, TheGeneratorGivesTheSameNumbersEverywhere) {
  // From another implementation of the same generator.
  EXPECT_EQ(next_uniform(), 0.43152799704850997);
  EXPECT_EQ(next_uniform(), 0.026433771592597743);
  random_numbers = {};
  EXPECT_EQ(next_uniform_single(), 7239838 * 0x1p-24F);
}

TEST_P(RandomTests, EveryVisitStaysOnTheDisk) {
  identification.Drive_Sectors = 1001;
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(GetRandomSector(1000), 0);
  identification.Drive_Sectors = int64_t{1} << 48;
  std::set<std::int64_t> low_bits;
  for (int i = 0; i < 1000; ++i) {
    const std::int64_t lba = GetRandomSector(8);
    EXPECT_TRUE(lba >= 0 && lba < identification.Drive_Sectors - 8);
    low_bits.insert(lba % 8);
  }
  EXPECT_EQ(low_bits.size(), 8U) << "odd sectors are reached on the largest disk";
}

TEST_P(RandomTests, TheRandomPatternLeavesTheEndOfWholeSectors) {
  disk.Sec_Buf.resize(512);
  std::fill(disk.Sec_Buf.bytes().begin(), disk.Sec_Buf.bytes().end(), std::uint8_t{0xFF});
  FillRandPatt(draw_pattern());
  EXPECT_NE(disk.Sec_Buf.data()[507], 0xFF);
  EXPECT_THAT(std::vector<int>(disk.Sec_Buf.data() + 508, disk.Sec_Buf.data() + 512), ElementsAre(255, 255, 255, 255));
  disk.Sec_Buf.resize(513);
  disk.Sec_Buf.data()[512] = 0xFF;
  FillRandPatt(draw_pattern());
  EXPECT_NE(disk.Sec_Buf.data()[511], 0xFF);
  EXPECT_EQ(disk.Sec_Buf.data()[512], 0xFF);
}

TEST_P(RandomTests, ARandomReadCountsItsVisits) {
  open_on("sectors 1000000\n");
  press(CmdRndRD_Click, {"100", "1000"});
  EXPECT_THAT(
      form1.Text1.text(),
      StartsWith("Random disk read 1000 sectors per operation, 100 passes on drive 0\r\nTime taken= 0 seconds for "
                 "100000 Read sector operations.\r\nTotal sectors read = 100000\r\nSET QV_D_TOTERR=0\r\n"));
  EXPECT_EQ(counters.Sectors_Done, 100000);
}

TEST_P(RandomTests, AnswersAreAskedForUntilTheyAreNumbers) {
  open_on("sectors 100000\n");
  press(CmdRndRD_Click, {"-1", "OK", "ten", "OK", "1", "20000"});
  EXPECT_EQ(counters.No_Secs, chunk()) << "cut to the most";
  press(CmdRndRD_Click, {"1", "-1", "OK", "0"});
  EXPECT_EQ(counters.No_Secs, chunk()) << "0 is the most";
  press(CmdRndRD_Click, {"CANCEL"});
  EXPECT_EQ(counters.Sectors_Done, 0);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SMART DATA")) << "the frame still ends";
}

TEST_P(RandomTests, TheCommandLineGivesPassesAndSectors) {
  const std::string disk = disk_switch(0, "sectors 1000000\n") + "/D:0 ";
  EXPECT_EQ(start(disk + "/OP:RANDOMREAD /PASSES:7 /COUNT:16065"), 0U);
  EXPECT_THAT(out(), HasSubstr("Random disk read 16065 sectors per operation, 7 passes on drive 0\r\n"));
  EXPECT_EQ(start(disk + "/OP:RANDOMWRITE"), 0U);
  EXPECT_THAT(out(), HasSubstr("Random disk write 1000 sectors per operation, 100 passes on drive 0\r\n"));
  EXPECT_THAT(out(), HasSubstr(" seconds for 100000 Read-Fill-Write-Read-Compare-Write sector operations.\r\n"
                               "Total sectors read/written = 400000"));
}

TEST_P(RandomTests, ABatchTakesVisitsOfUpToAGibibyte) {
  const std::string disk = disk_switch(0, "sectors 100000\n") + "/D:0 ";
  EXPECT_EQ(start(disk + "/OP:RANDOMREAD /PASSES:2 /COUNT:40000"), 0U);
  EXPECT_EQ(counters.Sectors_Done, 80000);
  std::size_t slot = 0;
  headless::desktop.at_pump = [&](int) {
    if (!journals().empty()) slot = read_file(journals()[0]).size();
  };
  EXPECT_EQ(start(disk + "/OP:RANDOMWRITE /PASSES:2 /COUNT:16072"), 0U);
  EXPECT_EQ(counters.Sectors_Done, 8 * 16072);
  EXPECT_EQ(slot, 4096U + 16072U * 512U);
  EXPECT_EQ(start(disk + "/OP:RANDOMREAD /PASSES:1 /COUNT:2097152"), 1U);
  EXPECT_THAT(out(), HasSubstr("The disk has 100000 sectors, a visit 2097152"));
  EXPECT_EQ(start(disk + "/OP:RANDOMREAD /COUNT:2097153"), 1U);
  EXPECT_THAT(err(), HasSubstr("/COUNT of a random test is at most 2097152, which is 1 GiB."));
}

TEST_P(RandomTests, ADiskOfOneVisitIsTestedAndASmallerOneLeftAlone) {
  open_on("sectors 1000\n");
  press(CmdRnd_Click, {"5", "1000"});
  EXPECT_EQ(counters.Sectors_Done, 20000);
  EXPECT_EQ(counters.TotalErrors, 0);
  press(CmdRnd_Click, {"5", "1001"});
  EXPECT_THAT(form1.Text1.text(), StartsWith("The disk has 1000 sectors, a visit 1001: nothing was done.\r\n"));
  EXPECT_EQ(counters.Sectors_Done, 0);
  EXPECT_EQ(start("/VDISK:0=" + path("d0.vd") + " /D:0 /OP:RANDOMREAD /COUNT:1001"), 1U)
      << "a caller must not think it was tested";
}

TEST_P(RandomTests, OnAMissingDriveEveryVisitFailsAndIsCounted) {
  open("");
  click(Option4_Click);
  for (void (*test)() : {CmdRndRD_Click, CmdRnd_Click}) {
    press(test, {"3", "1000"});
    const std::string& text = form1.Text1.text();
    EXPECT_THAT(text, StartsWith("Random disk "));
    EXPECT_THAT(text, HasSubstr(" 1000 sectors per operation, 3 passes on drive 3\r\nError Reading Sector "));
    EXPECT_EQ(count_of(text, "ERROR: 6 - Invalid Handle\r\n"), 3);
    EXPECT_THAT(text, HasSubstr(" seconds for 3000 Read"));
    EXPECT_THAT(text,
                HasSubstr("SET QV_D_TOTERR=3\r\nSET QV_D_READERR=3\r\nSET QV_D_WRITEERR=0\r\nSET QV_D_CMPERR=0\r\n"));
    EXPECT_THAT(text, HasSubstr("\r\nFinished!\r\n"));
    EXPECT_TRUE(headless::desktop.answers.empty());
    EXPECT_EQ(output.ExitCode, 4) << "1 for the drive, 3 for the transfers";
  }
  press(Cmd_Destructive_Random_Write, {"OK", "2", "8"});
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_CMPERR=2"));
  EXPECT_EQ(counters.TotalErrors, 4);
}

TEST_P(RandomTests, NoPassesAreNone) {
  open_on("sectors 4096\n");
  press(CmdRndRD_Click, {"0", "8"});
  EXPECT_THAT(form1.Text1.text(), StartsWith("Random disk read 8 sectors per operation, 0 passes on drive 0\r\n"
                                             "Time taken= 0 seconds for 0 Read sector operations.\r\n"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("\r\nFinished!\r\n"));
}

TEST_P(RandomTests, AReadBackThatFailsIsACompareError) {
  struct Case {
    void (*test)();
    std::deque<std::string> answers;
    int call;  // of the read, after the pump before the visit
  };
  // Seek, read; the journal's two seeks, writes and its flush; seek, lock, write, flush, unlock; seek, read.
  for (const Case& one :
       {Case{CmdRnd_Click, {"1", "8"}, 14}, Case{Cmd_Destructive_Random_Write, {"OK", "1", "8"}, 7}}) {
    open_on("sectors 4096\nserial F\n");
    headless::desktop.at_pump = [&](int) {
      if (counters.Sectors_Done > 0 || counters.OpStartTime == 0) return;
      headless::desktop.calls_made = 0;
      headless::desktop.fail_first = headless::desktop.fail_last = one.call;
    };
    press(one.test, one.answers);
    headless::desktop.fail_first = headless::desktop.fail_last = 0;
    EXPECT_THAT(form1.Text1.text(), HasSubstr("Error Reading Sector "));
    EXPECT_THAT(form1.Text1.text(),
                HasSubstr("SET QV_D_TOTERR=1\r\nSET QV_D_READERR=1\r\nSET QV_D_WRITEERR=0\r\nSET QV_D_CMPERR=1"));
    EXPECT_EQ(output.ExitCode, 1) << "compare errors are not added";
  }
}

TEST_P(RandomTests, WhatWentWrongInAVisitFollowsTheReport) {
  open_on("sectors 4096\ndrop 0 4096\nfail read 0 1000\n");
  press(CmdRnd_Click, {"12", "8"});
  const std::string& text = form1.Text1.text();
  const std::size_t block = text.find("\r\n\r\nVISITS\r\n======\r\n");
  ASSERT_NE(block, std::string::npos);
  EXPECT_GT(block, text.find("SMART DATA AFTER OPERATION"));
  EXPECT_LT(block, text.find("\r\nHEALTH\r\n"));
  EXPECT_GT(text.find("Compare error at LBA "), block);
  EXPECT_GT(text.find("Not written at LBA "), block);
  EXPECT_EQ(count_of(text, "Compare error at LBA ") + count_of(text, "Not written at LBA "), 12);
}

TEST_P(RandomTests, AVisitLargerThanATransferIsRefusedWithoutItsMemory) {
  open_on("sectors 100000000000\n");
  asked.count = 50000000000;
  asked.passes = std::numeric_limits<std::int32_t>::max();
  form1.CommandLineMode = true;
  headless::desktop.at_pump = [](int pump) {
    if (pump > 3) form1.MyCancel = true;
  };
  press(CmdRndRD_Click, {});
  EXPECT_GT(counters.TotalErrors, 0);
  EXPECT_EQ(disk.Errno, kRefusedTransfer);
}

TEST_P(RandomTests, StrayAndLostWritesAreCompareErrors) {
  for (const std::string fault : {"stray 0 4096 16\n", "drop 0 4096\n"}) {
    open_on("sectors 4096\n" + fault);
    press(CmdRnd_Click, {"10", "8"});
    EXPECT_EQ(counters.TotalCErrors, 10) << fault;
    EXPECT_EQ(counters.TotalErrors, 0);
    EXPECT_EQ(output.ExitCode, 0) << "compare errors are not added";
  }
}

TEST_P(RandomTests, APlaceThatCannotBeReadIsNotWritten) {
  open_on("sectors 4096\nfail read 0 4096\ngrow 5 1 on write\nsmart 5 0 1 1 0 0\n");
  press(CmdRnd_Click, {"3", "8"});
  EXPECT_EQ(count_of(form1.Text1.text(), ": the former contents could not be read.\r\n"), 3);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("was 0          now 0          DIFFERENCE=0\r\n")) << "nothing was written";
  EXPECT_EQ(counters.Sectors_Done, 24);
  EXPECT_EQ(random_test.Ops_Done, 3);
}

TEST_P(RandomTests, WhatCannotBeWrittenBackIsSavedAndNamedLast) {
  write_image("a.img", 4096);
  write_file("d0.vd", "image a.img\nserial A/7\nfail write 0 4096\n");
  EXPECT_NE(start("/VDISK:0=" + path("d0.vd") + " /D:0 /OP:RANDOMWRITE /PASSES:1 /COUNT:2 /REPORT:" + path("r.txt")),
            0U);
  const std::string report = read_file(path("r.txt"));
  const std::string last = lines_with(report, "Former contents").back();
  EXPECT_THAT(report, HasSubstr(last + "\r\n\r\n\r\n" + (long_sectors() ? "SECTORS\r\n" : "HEALTH\r\n")));
  EXPECT_EQ(lines_with(report, "Former contents").size(), 2U) << "in its block and as the last status";
  EXPECT_EQ(count_of(err(), "Former contents of 2 sectors at LBA "), 1);
  const std::string name = last.substr(last.find("in the file ") + 12);
  EXPECT_EQ(name, path("sectorix-A_7.journal."));
  const std::string journal = read_file(name.substr(0, name.size() - 1));
  EXPECT_EQ(journal.size(), 4096U + (long_sectors() ? 4096U : 1024U)) << "all that a write goes over";
  const std::string lba = last.substr(last.find("LBA ") + 4, last.find(" could") - last.find("LBA ") - 4);
  EXPECT_THAT(journal.substr(4096), StartsWith(lba + " "));
}

TEST_P(RandomTests, TheNextPlacesDoNotDependOnWhatCouldBeRead) {
  const auto last_place = [&](const std::string& faults) {
    random_numbers = {};
    open_on("sectors 4096\n" + faults);
    press(CmdRnd_Click, {"3", "8"});
    return disk.Buf_LBA;
  };
  EXPECT_EQ(last_place(""), last_place("fail read 0 4096\n"));
}

TEST_P(RandomTests, AFlushThatFailsBehindTheWriteBackIsALostPlace) {
  open_on("sectors 4096\nserial F\n");
  asked.report = path("r.txt");
  headless::desktop.at_pump = [](int) {
    // Seek, read; the journal's two seeks, writes and its flush; seek, lock, write, flush, unlock; seek, read; seek,
    // lock, write, flush.
    headless::desktop.calls_made = 0;
    headless::desktop.fail_first = headless::desktop.fail_last = 18;
  };
  press(CmdRnd_Click, {"1", "8"});
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Former contents of 8 sectors at LBA "));
  EXPECT_EQ(counters.TotalErrors, 0);
  EXPECT_EQ(output.ExitCode, 1) << "nothing that failed was counted";
}

TEST_P(RandomTests, TheDestructiveTestWritesThePatternAtEveryPlace) {
  open_on("sectors 100000\n");
  form1.TxtPattern.set_text("A5");
  press(Cmd_Destructive_Random_Write, {"CANCEL"});
  EXPECT_EQ(headless::desktop.boxes.back().title, "WRITE TO DRIVE?");
  EXPECT_EQ(counters.Sectors_Done, 0);
  press(Cmd_Destructive_Random_Write, {"OK", "100", "1000"});
  EXPECT_EQ(counters.Sectors_Done, 200000);
  EXPECT_EQ(counters.TotalCErrors, 0);
  EXPECT_EQ(disk.Sec_Buf.data()[0], 0xA5);
  EXPECT_THAT(form1.Text1.text(),
              HasSubstr("Destructive Random Write test to whole disk with pattern A5, 100 passes, 1000 "
                        "sectors per operation on drive 0\r\n"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("100000 Write-Read-Compare sector operations."));
}

TEST_P(RandomTests, TheOffTrackTestSweepsAfterEveryThousandPasses) {
  headless::desktop.keeps_calls = false;
  open_on("sectors 4000000\n");
  press(Cmd_OffTrack_Write, {"999"});
  EXPECT_EQ(counters.Sectors_Done, 999 * 92);
  press(Cmd_OffTrack_Write, {"1000"});
  EXPECT_EQ(counters.Sectors_Done, 522000);
  EXPECT_EQ(counters.TotalErrors, 0);
  EXPECT_THAT(form1.Text1.text(),
              StartsWith("Non-Destructive Off-Track Write test - 1000 passes, 30 sectors per operation "
                         "on drive 0\r\nFirst and Last 100MB not tested\r\nTime taken= 0 for 522000 "
                         "sectors read/written."));
}

TEST_P(RandomTests, TheOffTrackTestNeedsItsRoomAndNothingMore) {
  open_on("sectors 409592\n");
  press(Cmd_OffTrack_Write, {"1"});
  EXPECT_THAT(form1.Text1.text(), HasSubstr("the test needs 409600: nothing was done."));
  open_on("sectors 409600\n");
  press(Cmd_OffTrack_Write, {"200"});
  EXPECT_EQ(counters.TotalErrors, 0) << "no place lies outside the disk";
}

ON_EACH_SECTOR_SIZE(RandomTests);

}  // namespace
