#include "app/handlers.h"

#include <gmock/gmock.h>

#include "form/form1.h"
#include "form/output.h"
#include "measure/measure.h"
#include "tests/support/rig.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Handlers : public Rig {};

TEST_F(Handlers, HelpShowsTheUsageTextAndF1TheSwitches) {
  open_on("sectors 1000\n");
  headless::desktop.answers = {"OK", "OK"};
  click(CmdHelp_Click);
  EXPECT_EQ(headless::desktop.boxes.at(0).text,
            "Usage: Sectorix {/D:n}  where n is the initial disk drive number\r\n"
            "PLEASE NOTE: Must be run with Administrator privileges.\r\n"
            "If you get a 'Write error' when writing to a removable disk, try 'Ejecting' the drive first.\r\n"
            "Reported variables:\r\n"
            "QV_S_xxx = SMART statistics\r\n"
            "QV_D_xxx = Disk statistics\r\n"
            "QV_E_xxx = Event log statistics.");
  click(show_command_line_help);
  for (const char* part : {"Switches", "100010", "/OP:READ /JSON:"})
    EXPECT_THAT(headless::desktop.boxes.at(1).text, HasSubstr(part));
}

TEST_F(Handlers, TheMenuSaysWhyAnEntryIsGreyAndRunsTheOthers) {
  open_on("sectors 1000\nserial S1\nfail read 5 1\n");
  headless::desktop.answers = {"CANCEL"};
  click(more_click);
  const std::string menu = headless::desktop.boxes.back().text;
  EXPECT_THAT(menu, StartsWith("Find exact bad &sectors (grey): Run READ or SEARCH first.\r\n"));
  EXPECT_THAT(menu, HasSubstr("Save result &page... (grey): There is no result to save yet"));
  click(CmdRead_Click);
  const std::size_t boxes = headless::desktop.boxes.size();
  headless::desktop.answers = {"Find exact bad &sectors"};
  click(more_click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("unreadable: LBA 5, 1 sector"));
  EXPECT_EQ(headless::desktop.boxes.size(), boxes + 1);
}

TEST_F(Handlers, ACommandPressedWhileADriveIsBeingSelectedRunsAfterwards) {
  open(disk_switch(0, "sectors 1000\n") + disk_switch(1, "sectors 2000\n"));
  headless::desktop.at_pump = [](int) {
    if (form1.selecting_drive) CmdRead_Click();
  };
  click(Option2_Click);
  EXPECT_THAT(form1.Text1.text(), StartsWith("Reading 2000 sectors starting at LBA 0 on drive 1\r\n"));
  EXPECT_EQ(measure.done, 2000);

  headless::desktop.at_pump = [](int) {
    if (!form1.selecting_drive) return;
    CmdRead_Click();
    cmdCancel_Click();
  };
  const auto runs = measure.runs;
  click(Option1_Click);
  EXPECT_EQ(measure.runs, runs) << "Cancel took the press back";

  headless::desktop.at_pump = [](int) {
    if (!form1.selecting_drive) return;
    CmdRead_Click();
    Option2_Click();
  };
  click(Option1_Click);
  EXPECT_EQ(form1.SelectedDrive, 1);
  EXPECT_EQ(measure.runs, runs) << "it was meant for drive 0";
}

TEST_F(Handlers, ACommandThatIsPressedDuringTheStartRunsAfterIt) {
  headless::desktop.at_pump = [](int) {
    if (form1.selecting_drive) CmdRead_Click();
  };
  open(disk_switch(1, "sectors 1000\n") + disk_switch(3, "sectors 3000\n") + "/D:1 /D:3");
  EXPECT_THAT(form1.Text1.text(), StartsWith("Reading 3000 sectors starting at LBA 0 on drive 3\r\n"));
  EXPECT_EQ(measure.runs, 1U);
}

TEST_F(Handlers, OnlyAWriteOfTheRangeKeepsItThroughItsFrame) {
  open_on("sectors 40000\nserial S1\n");
  headless::desktop.answers = {"1", "8"};
  click(CmdRnd_Click);
  EXPECT_FALSE(form1.RangeEdited);
  range("100", "8");
  headless::desktop.answers = {"OK UNTICKED"};
  headless::desktop.otherwise = "OK";
  click(CmdWrite_Click);
  EXPECT_FALSE(form1.RangeEdited);
  EXPECT_THAT(form1.Text1.text(), StartsWith("Writing 8 sectors starting at LBA 100 on drive 0\r\n"));
  form1.RangeEdited = true;
  click(CmdWrite_Click);
  EXPECT_TRUE(form1.RangeEdited);
}

}  // namespace
