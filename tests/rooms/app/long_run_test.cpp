// Runs past the sizes and times that programs forget about.

#include <gmock/gmock.h>

#include "app/handlers.h"
#include "disk/counters.h"
#include "form/form1.h"
#include "tests/support/rig.h"

namespace {

using ::testing::HasSubstr;

class LongRun : public Rig {
 protected:
  std::uint32_t run_on(const std::string& disk_file, const std::string& switches) {
    return start(disk_switch(0, disk_file) + "/D:0 " + switches);
  }
};

TEST_F(LongRun, TwentyTerabytesAreAddressedToTheLastSector) {
  const std::string disk = "sectors 39062500000\nfail read 39062499990 1\n";
  EXPECT_EQ(run_on(disk, "/OP:READ /START:39062479000"), 1U);
  EXPECT_THAT(out(), HasSubstr("Reading 21000 sectors starting at LBA 39062479000 on drive 0"));
  EXPECT_THAT(out(), HasSubstr("Error Reading Sector 39062499480 for 520 sectors."));
  EXPECT_EQ(run_on(disk, "/OP:RANDOMWRITE /PASSES:50 /COUNT:8"), 0U);
  EXPECT_EQ(run_on(disk, "/OP:SEARCH /FIND:!H00 /START:39062490000"), 0U);
  EXPECT_THAT(out(), HasSubstr("SET QV_D_FOUND_LBA=\r\n"));
}

TEST_F(LongRun, CountsPassThirtyTwoBits) {
  open_on("sectors 39062500000\n");
  headless::desktop.keeps_calls = false;
  headless::desktop.at_pump = [](int) {
    if (counters.Sectors_Done == 20480) counters.Sectors_Done = 9'000'000'000;
    if (counters.Sectors_Done > 9'000'500'000) form1.MyCancel = true;
  };
  click(CmdRead_Click);
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("9000512000 sectors in "));
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("(23%)"));
}

TEST_F(LongRun, ADriveThatVanishesMidwayEndsTheRunAtTheThirdFailure) {
  EXPECT_EQ(run_on("sectors 204800\nvanish 4\n", "/OP:READ"), 3U);
  EXPECT_EQ(count_of(out(), "ERROR: 1167 - The device is not connected.\r\n"), 3);
  EXPECT_THAT(out(), HasSubstr("SET QV_D_TOTERR=3\r\n"));
  const std::string end =
      "STOPPED at LBA 143360, 30 % not read: the drive does not answer any more: error 1167 - The device is not "
      "connected.\r\n";
  EXPECT_THAT(out(), HasSubstr("RUN\r\n===\r\n" + end));
  EXPECT_THAT(err(), HasSubstr(end));
  EXPECT_THAT(out(), HasSubstr("BAD PLACES\r\n==========\r\nNone was found.\r\n")) << "it is gone, not bad";
}

TEST_F(LongRun, ADriveThatStillTellsItsLengthIsReadOn) {
  EXPECT_EQ(run_on("sectors 204800\nfail read 0 81920 21\n", "/OP:READ"), 4U);
  EXPECT_EQ(count_of(out(), "STOPPED"), 0);
}

TEST_F(LongRun, TheRunEndsAfterAsManyErrorsAsAskedFor) {
  EXPECT_EQ(run_on("sectors 204800\nfail read 20480 204800\n", "/OP:READ /STOPAFTER:2"), 2U);
  EXPECT_THAT(out(), HasSubstr("STOPPED at LBA 61440, 70 % not read: as many transfers have failed as /STOPAFTER "
                               "allows\r\n"));
  EXPECT_EQ(run_on("sectors 204800\nfail read 20480 204800\n", "/OP:RANDOMREAD /PASSES:50 /STOPAFTER:3"), 3U);
  EXPECT_THAT(out(), HasSubstr("STOPPED, "));
}

TEST_F(LongRun, AFullDiskUnderTheReportIsToldAndTheRunGoesOn) {
  EXPECT_EQ(run_on("sectors 1000\n", "/OP:READ /REPORT:/dev/full /VARS:" + path("vars")), 100'010U);
  EXPECT_EQ(count_of(err(), "The report cannot be written: error 112. The run goes on."), 1);
  EXPECT_THAT(read_file(path("vars")),
              testing::AllOf(HasSubstr("SET QV_D_TOTERR=0"), HasSubstr("SET QV_RESULT=errors")));
}

}  // namespace
