#include <gmock/gmock.h>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/measure.h"
#include "ops/operations.h"
#include "ops/selection.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class SequentialRead : public EachSectorSize {};

TEST_P(SequentialRead, ReadsTheWholeDiskAndEndsWithTotals) {
  open_on("sectors 20000\nserial S1\n");
  headless::desktop.seconds_per_look = 0.0078125;
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(),
              StartsWith("Reading 20000 sectors starting at LBA 0 on drive 0\r\n"
                         "\r\nTime taken= 0.0390625 seconds for 20000 sectors.\r\n"
                         "\r\nSET QV_D_TOTERR=0\r\nSET QV_D_READERR=0\r\nSET QV_D_WRITEERR=0\r\nSET QV_D_CMPERR=0\r\n"
                         "\r\nFinished!\r\n"));
  EXPECT_EQ(output.ExitCode, 0);
  EXPECT_EQ(disk.hDrive, -1);
  EXPECT_EQ(virtualdisk::open_handles(), 0);
  EXPECT_EQ(disk.Buf_LBA, chunk()) << "16065 and 3935";
  EXPECT_EQ(disk.Buf_Secs, 20000 - chunk());
}

TEST_P(SequentialRead, ChunksHaveTwoSteps) {
  disk.sizes.logical = logical;
  EXPECT_EQ(read_chunk(16063), 16063);
  EXPECT_EQ(read_chunk(16065), chunk());
  EXPECT_EQ(read_chunk(20479), chunk());
  EXPECT_EQ(read_chunk(100000), 20480);
}

TEST_P(SequentialRead, AFaultIsReportedAndTheRunGoesOn) {
  open_on("sectors 100000\nfail read 50000 1 23\n");
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Error Reading Sector 40960 for 20480 sectors.\r\n"
                                            "ERROR: 23 - Data error (cyclic redundancy check)\r\n"));
  EXPECT_EQ(counters.Sectors_Done, 100000);
  EXPECT_EQ(output.ExitCode, 1);
}

TEST_P(SequentialRead, FieldsAreNormalised) {
  open_on("sectors 1000\n");
  range(" 007 ", "none");
  click(CmdRead_Click);
  EXPECT_EQ(form1.TxtStartLBA.text(), "7");
  EXPECT_EQ(form1.TxtNoSecs.text(), "1");
  EXPECT_EQ(counters.Sectors_Done, 1);
}

TEST_P(SequentialRead, CancelStopsItAndStillPrintsTheTotals) {
  open_on("sectors 100000\n");
  headless::desktop.pumps = 0;
  headless::desktop.at_pump = [](int pump) {
    if (pump == 3) cmdCancel_Click();
  };
  click(CmdRead_Click);
  EXPECT_EQ(counters.Sectors_Done, 40960);
  EXPECT_THAT(form1.Text1.text(), HasSubstr(" seconds for 100000 sectors."));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("\r\nFinished!\r\n"));
  EXPECT_EQ(output.ExitCode, 3);
}

TEST_P(SequentialRead, ExitEndsTheProcessAfterASecondAndPrintsNothing) {
  open_on("sectors 100000\n");
  headless::desktop.pumps = 0;
  headless::desktop.at_pump = [](int pump) {
    if (pump == 2) CmdExit_Click();
  };
  const double before = headless::desktop.steady;
  EXPECT_TRUE(click(CmdRead_Click));
  EXPECT_EQ(output.ExitCode, 1);
  EXPECT_NEAR(headless::desktop.steady - before, 1.0, 0.01);
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("Time taken")));
}

TEST_P(SequentialRead, ADriveButtonDuringARunWaitsForItsEnd) {
  attach(3, "sectors 776\n");
  open_on("sectors 100000\n");
  headless::desktop.pumps = 0;
  headless::desktop.at_pump = [](int pump) {
    if (pump == 2) Option4_Click();
  };
  click(CmdRead_Click);
  EXPECT_EQ(counters.Sectors_Done, 20480);
  EXPECT_EQ(form1.SelectedDrive, 3);
  EXPECT_EQ(form1.LblStart.text(), "Start (0-775)");
  EXPECT_EQ(form1.TxtNoSecs.text(), "776");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Reading 100000 sectors starting at LBA 0 on drive 0"));
}

TEST_P(SequentialRead, ASecondCommandDoesNotStartInsideTheFirst) {
  open_on("sectors 100000\n");
  headless::desktop.at_pump = [](int) { CmdRead_Click(); };
  click(CmdRead_Click);
  EXPECT_EQ(headless::desktop.commands_begun, 1);
  EXPECT_EQ(count_of(form1.Text1.text(), "Finished!"), 1);
}

TEST_P(SequentialRead, ACommandBehindADriveButtonWaitsForTheSelection) {
  attach(3, "sectors 776\n");
  open_on("sectors 104\n");
  headless::desktop.pumps = 0;
  headless::desktop.at_pump = [](int pump) {
    if (pump == 1) CmdWrite_Click();
  };
  headless::desktop.answers = {"CANCEL"};
  click(Option4_Click);
  EXPECT_THAT(headless::desktop.boxes.at(0).text, StartsWith("Warning: This Disk 3 Write operation"));
  EXPECT_EQ(form1.SelectedDrive, 3);
}

TEST_P(SequentialRead, WhatTheUserTypedOutranksTheCommandLinesRange) {
  open("/START:7 /COUNT:3 " + disk_switch(0, "sectors 1000\n"));
  form1.TxtStartLBA.set_typed("100");
  form1.TxtNoSecs.set_typed("5");
  range_typed();
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), StartsWith("Reading 5 sectors starting at LBA 100"));
}

TEST_P(SequentialRead, WhatIsDoneBetweenTransfersIsNoPartOfThem) {
  open_on("sectors 100000\n");
  headless::desktop.at_pump = [](int) { headless::pass_time(0.5); };
  click(CmdRead_Click);
  EXPECT_EQ(measure.latency.timed, 5);
  EXPECT_EQ(measure.latency.slowest.front().seconds, 0.0);
  EXPECT_GT(measure.seconds, 1.5);
}

TEST_P(SequentialRead, WhatWasNotReadIsNotShown) {
  open_on("sectors 104\nfail read 0 1\n");
  range("0", "2");
  click(CmdRead_Click);
  click(CmdDisplay_Click);
  EXPECT_EQ(count_of(form1.Text1.text(), "[Sector "), 0);
  EXPECT_EQ(count_of(form1.Text1.text(), "Type: 0 "), 4) << "no bytes of anything else";
}

TEST_P(SequentialRead, AMissingDriveIsToldAndCountsItsFailures) {
  open("");
  range("0", "10");
  click(Option4_Click);
  click(CmdRead_Click);
  EXPECT_THAT(lines_with(form1.Text1.text(), "ERROR:"), ElementsAre("ERROR: 6 - Invalid Handle"));
  EXPECT_EQ(output.ExitCode, 2) << "1 for the drive, 1 for the transfer";
}

TEST_P(SequentialRead, AcrossMidnightTheTimeIsNegative) {
  open_on("sectors 16\nslow 0 16 2000\n");
  headless::desktop.midnight_seconds = 86399.0;
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Time taken= -86398 seconds"));
}

/// From the third pump on the user presses Cancel twice in every read.
void give_up_from_the_third_pump() {
  headless::desktop.at_pump = [](int pump) { headless::desktop.gives_up_reads = pump >= 3; };
}

TEST_P(SequentialRead, AReadThatIsGivenUpIsNoErrorOfTheDisk) {
  open_on("sectors 100000\nslow 0 100000 40000\n");
  headless::desktop.pumps = 0;
  give_up_from_the_third_pump();
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("ERROR:")));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_TOTERR=0"));
  EXPECT_EQ(counters.Sectors_Done, 2 * 20480) << "what came before it counts";
  EXPECT_EQ(measure.transfers, 2);
  EXPECT_TRUE(measure.stopped);
  EXPECT_EQ(output.ExitCode, 3);
  EXPECT_EQ(disk.Buf_Secs, 0) << "nothing of it is shown";
}

TEST_P(SequentialRead, ABatchWhoseReadIsGivenUpEndsAsCancelled) {
  headless::desktop.gives_up_reads = true;
  EXPECT_EQ(start(disk_switch(0, "sectors 1000\nslow 0 1000 40000\n") + "/D:0 /OP:READ"), 3U);
  EXPECT_THAT(out(), Not(HasSubstr("ERROR:")));
  EXPECT_THAT(out(), HasSubstr("SET QV_D_READERR=0"));
}

ON_EACH_SECTOR_SIZE(SequentialRead);

}  // namespace
