#include "ops/range_end.h"

#include <gmock/gmock.h>

#include "app/handlers.h"
#include "disk/counters.h"
#include "form/form1.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

using RangeEnd = Rig;

TEST_F(RangeEnd, ABatchIsRefusedInOneLineBeforeAnythingIsRead) {
  for (const std::string run : {"/OP:READ /START:1990 /COUNT:11", "/OP:SHOW /START:2000", "/OP:READ /START:2000",
                                "/OP:SEARCH /FIND:tx /COUNT:2001", "/OP:WRITE /SERIAL:S /START:1999 /COUNT:2"}) {
    headless::desktop.err.clear();
    EXPECT_EQ(start(disk_switch(0, "sectors 2000\nserial S\n") + "/D:0 " + run), 1U) << run;
    EXPECT_THAT(err(), StartsWith("LBA ")) << run;
    EXPECT_THAT(err(), HasSubstr(" reach beyond the disk's end: drive 0 has 2000 sectors, LBA 0 to 1999. Nothing was "
                                 "done.\r\n"));
    EXPECT_EQ(count_of(err(), "\n"), 1);
    EXPECT_EQ(counters.Sectors_Done, 0);
  }
  EXPECT_EQ(start(disk_switch(0, "sectors 2000\n") + "/D:0 /OP:READ /START:1990 /COUNT:10"), 0U);
  EXPECT_EQ(start(disk_switch(0, "sectors 2000\n") + "/D:0 /OP:READ /START:1990"), 0U);
}

TEST_F(RangeEnd, AReadAsksNothingAndEndsWithTheFirstTransferPastTheDisk) {
  open_on("sectors 50000\n");
  range("10", "9000000000");
  click(CmdRead_Click);
  EXPECT_TRUE(headless::desktop.boxes.empty());
  EXPECT_THAT(
      lines_with(form1.Text1.text(), "Error Reading"),
      ElementsAre("Error Reading Sector 40970 for 20480 sectors.", "Error Reading Sector 61450 for 20480 sectors."));
  EXPECT_THAT(form1.Text1.text(), HasSubstr(" seconds for 9000000000 sectors.\r\n"));
  EXPECT_THAT(form1.Text1.text(),
              HasSubstr("\r\n\r\nRUN\r\n===\r\nSTOPPED at LBA 81930, 99 % not read: 8999950010 sectors of "
                        "the range lie past the disk's end, LBA 49999.\r\n"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_RESULT=errors"));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("DOUBTFUL"))) << "nothing is wrong with the disk";
  range("0", "60000");
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(),
              HasSubstr("\r\n\r\nRUN\r\n===\r\n10000 sectors of the range lie past the disk's end, LBA "
                        "49999.\r\n"))
      << "the last transfer only ends past it";
  range("1990", "10");
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("RUN\r\n")));
}

TEST_F(RangeEnd, ASearchAsksNothingEitherAndAStartPastTheEndFailsOnce) {
  open_on("sectors 50000\n");
  range("50000", "100000");
  headless::desktop.answers = {"tx"};
  click(CmdFind_Click);
  EXPECT_EQ(headless::desktop.boxes.size(), 1U);
  EXPECT_EQ(counters.TotalErrors, 1);
  EXPECT_THAT(form1.Text1.text(), HasSubstr(": 100000 sectors of the range lie past the disk's end, LBA 49999.\r\n"));
}

TEST_F(RangeEnd, AWriteInAWindowAsksOnceMore) {
  open_on("sectors 2000\n");
  range("1990", "20");
  headless::desktop.answers = {"CANCEL"};
  click(CmdWrite_Click);
  EXPECT_EQ(headless::desktop.boxes.back().title, "BEYOND THE DISK'S END?");
  headless::desktop.answers = {"OK", "OK"};
  click(CmdWrite_Click);
  EXPECT_EQ(headless::desktop.boxes.size(), 3U);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Error Writing Sector 1990 for 20 sectors.\r\nERROR: 27"));
  range("1990", "10");
  headless::desktop.answers = {"OK"};
  click(CmdWrite_Click);
  EXPECT_EQ(headless::desktop.boxes.size(), 4U);
}

}  // namespace
