#include "ops/range_end.h"

#include <gmock/gmock.h>

#include "app/handlers.h"
#include "disk/counters.h"
#include "form/form1.h"
#include "tests/support/rig.h"

namespace {

using ::testing::HasSubstr;
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

TEST_F(RangeEnd, AWindowAsksOnce) {
  open_on("sectors 2000\n");
  range("1990", "20");
  headless::desktop.answers = {"CANCEL"};
  click(CmdRead_Click);
  EXPECT_EQ(counters.Sectors_Done, 0);
  EXPECT_EQ(headless::desktop.boxes.back().title, "BEYOND THE DISK'S END?");
  headless::desktop.answers = {"OK"};
  click(CmdRead_Click);
  EXPECT_EQ(counters.Sectors_Done, 20);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Error Reading Sector 1990 for 20 sectors.\r\nERROR: 27"));
  EXPECT_EQ(headless::desktop.boxes.size(), 2U);
  range("1990", "10");
  click(CmdRead_Click);
  EXPECT_EQ(headless::desktop.boxes.size(), 2U);
}

}  // namespace
