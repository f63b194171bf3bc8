#include "app/program.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>

#include "app/handlers.h"
#include "form/form1.h"
#include "form/output.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class Program : public Rig {};

TEST_F(Program, StartsOnDriveZeroWithTheInstructions) {
  open(disk_switch(0, "sectors 1000000\nmodel Plain Disk\n"));
  EXPECT_THAT(form1.Caption.text(), StartsWith("Sectorix v.1.0.0"));
  EXPECT_EQ(form1.TxtStatus.text(), "Drive 0  - Plain Disk  488Mb");
  EXPECT_THAT(form1.Text1.text(),
              StartsWith("    WARNING: Drive 0  - Plain Disk  488Mb selected!\r\n\r\nINSTRUCTIONS"));
  EXPECT_EQ(form1.TxtPattern.text(), "2C2CAA55");
  EXPECT_EQ(form1.TxtNoSecs.text(), "1000000");
  EXPECT_EQ(form1.LblStart.text(), "Start (0-999999)");
  EXPECT_FALSE(form1.CommandLineMode);
  EXPECT_TRUE(form1.options[0].on());
}

TEST_F(Program, AMissingDriveIsNoErrorAtStartUp) {
  open("/d:5");
  EXPECT_THAT(form1.Text1.text(), StartsWith("    WARNING: Drive 5 not found! selected!"));
  EXPECT_EQ(form1.LblStart.text(), "Start (0--1)");
  EXPECT_TRUE(form1.CommandLineMode);
}

TEST_F(Program, TheHighestNamedDriveStaysAndOtherDigitsMeanDriveZero) {
  open(disk_switch(1, "sectors 10\n") + disk_switch(3, "sectors 30\n") + "/D:3 /d:1");
  EXPECT_EQ(form1.SelectedDrive, 3);
  EXPECT_TRUE(form1.options[3].on());
  EXPECT_FALSE(form1.options[1].on());
}

TEST_F(Program, AnUnknownDigitSelectsDriveZeroInCommandLineMode) {
  open("/D:8");
  EXPECT_EQ(form1.SelectedDrive, 0);
  EXPECT_TRUE(form1.CommandLineMode);
}

TEST_F(Program, NeitherItsOwnPathNorItsSwitchesNameADrive) {
  open("/VDISK:0=" + write_file("x.vd", "sectors 5\n") + " /SLOW:20");
  EXPECT_FALSE(form1.CommandLineMode);
}

TEST_F(Program, AnEditedRangeSurvivesARunAndADriveButtonRefillsIt) {
  open(disk_switch(0, "sectors 1000\n") + "/D:0");
  form1.TxtNoSecs.set_typed("10");
  range_typed();
  click(CmdRead_Click);
  EXPECT_EQ(form1.TxtNoSecs.text(), "10");
  click(Option1_Click);
  EXPECT_EQ(form1.TxtNoSecs.text(), "1000");
}

TEST_F(Program, ARunReportsToStandardOutputAndEndsWithItsErrors) {
  EXPECT_EQ(start(disk_switch(3, "sectors 1000\nfail read 50 1\n") + "/D:3 /OP:READ /START:5 /COUNT:100"), 1U);
  EXPECT_THAT(out(), HasSubstr("Reading 100 sectors starting at LBA 5 on drive 3\r\n"));
  EXPECT_THAT(out(), HasSubstr("Error Reading Sector 5 for 100 sectors.\r\nERROR: 23 - "));
  EXPECT_THAT(out(), HasSubstr("\r\nTotal Errors = 1\r\nTotal Read errors = 1\r\n"));
  EXPECT_THAT(out(), HasSubstr("\r\nSET QV_D_TOTERR=1\r\nSET QV_D_READERR=1\r\n"));
  EXPECT_THAT(out(), HasSubstr("Last Status: 100 sectors in "));
  EXPECT_TRUE(headless::desktop.boxes.empty());
}

TEST_F(Program, AStartAloneReadsToTheEndOfTheDisk) {
  EXPECT_EQ(start(disk_switch(0, "sectors 1000\n") + "/D:0 /OP:READ /START:990"), 0U);
  EXPECT_THAT(out(), HasSubstr("Reading 10 sectors starting at LBA 990"));
}

TEST_F(Program, ReportAndVariablesGoToTheirFiles) {
  write_file("vars.txt", "kept\r\n");
  EXPECT_EQ(start(disk_switch(0, "sectors 10\n") + "/D:0 /OP:read \"/REPORT:" + path("a report.txt") +
                  "\" /VARS:" + path("vars.txt")),
            0U);
  EXPECT_EQ(out(), "");
  EXPECT_THAT(read_file(path("a report.txt")), HasSubstr("Total Errors = 0\r\n"));
  EXPECT_THAT(
      read_file(path("vars.txt")),
      StartsWith(
          "kept\r\n\r\nSET QV_D_TOTERR=0\r\nSET QV_D_READERR=0\r\nSET QV_D_WRITEERR=0\r\nSET QV_D_CMPERR=0\r\n"));
}

TEST_F(Program, AMissingDriveEndsARunWithOne) {
  EXPECT_EQ(start("/D:4 /OP:READ"), 1U);
  EXPECT_THAT(out(), HasSubstr("Drive 4 does not exist!\r\n"));
  EXPECT_EQ(err(), "Drive 4 does not exist!\r\n");
}

TEST_F(Program, ControlCEndsARunWithItsReport) {
  headless::desktop.at_pump = [](int pump) {
    if (pump == 4) headless::press_control_c();
  };
  EXPECT_EQ(start(disk_switch(0, "sectors 100000\nfail read 0 1\n") + "/D:0 /OP:READ"), 4U);
  EXPECT_THAT(out(), HasSubstr("SET QV_D_TOTERR=1\r\n"));
}

TEST_F(Program, APressDuringTheLastTransferCountsAndALaterOneComesTooLate) {
  headless::desktop.has_display = true;
  const std::string line = disk_switch(0, "sectors 100\nfail read 0 1\n") + "/D:0 /OP:READ";
  start(line);
  const int pumps = headless::desktop.pumps;
  for (auto* const press : {headless::press_control_c, cmdCancel_Click}) {
    std::vector<std::uint32_t> codes;
    for (int at = pumps - 2; at <= pumps; ++at) {
      headless::desktop.pumps = 0;
      headless::desktop.at_pump = [at, press](int pump) {
        if (pump == at) press();
      };
      codes.push_back(start(line));
    }
    EXPECT_THAT(codes, ElementsAre(3U, 4U, 1U)) << "before the transfer, in it, and after the totals";
  }
}

TEST_F(Program, TheCancelButtonLeavesTheWindowOpen) {
  headless::desktop.has_display = true;
  headless::desktop.at_pump = [](int pump) {
    if (pump == 4) cmdCancel_Click();
  };
  EXPECT_EQ(start(disk_switch(0, "sectors 100000\n") + "/D:0 /OP:READ"), 3U);
  EXPECT_THAT(out(), Not(HasSubstr("Total Errors")));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Finished!"));
}

TEST_F(Program, WhatIsPressedWhileTheWindowComesUpNeverChangesARun) {
  headless::desktop.has_display = true;
  const std::string disks = disk_switch(0, "sectors 1000\nserial S\n") + disk_switch(1, "sectors 2000\nserial S\n");
  const auto press_at_first_pump = [](void (*handler)()) {
    headless::desktop.pumps = 0;
    headless::desktop.at_pump = [handler](int pump) {
      if (pump == 1) handler();
    };
  };
  press_at_first_pump(Option2_Click);
  EXPECT_EQ(start(disks + "/D:0 /OP:WRITE /SERIAL:S"), 3U) << "another drive";
  press_at_first_pump(headless::press_control_c);
  EXPECT_EQ(start(disks + "/D:0 /OP:WRITE /SERIAL:S"), 3U);
  EXPECT_THAT(out(), Not(HasSubstr("Writing ")));
  press_at_first_pump(CmdWrite_Click);
  headless::desktop.out.clear();
  EXPECT_EQ(start(disks + "/D:0 /OP:READ /START:5 /COUNT:3"), 0U);
  EXPECT_THAT(out(), Not(HasSubstr("Writing ")));
  press_at_first_pump(TxtNoSecs_Click);
  EXPECT_EQ(start(disks + "/D:0 /OP:READ"), 0U);
  EXPECT_THAT(out(), HasSubstr("Reading 1000 sectors"));
}

TEST_F(Program, ADriveButtonEndsARunAsCancelled) {
  headless::desktop.at_pump = [](int pump) {
    if (pump == 3) Option2_Click();
  };
  EXPECT_EQ(start(disk_switch(0, "sectors 100000\n") + disk_switch(1, "sectors 5\n") + "/D:0 /OP:READ"), 3U);
  EXPECT_THAT(out(), Not(HasSubstr("Check_drv 1")));
}

TEST_F(Program, VariablesAreAppendedWholeOrNotAtAll) {
  const std::string line = disk_switch(0, "sectors 10\n") + "/D:0 /OP:READ /VARS:" + path("v.cmd");
  start(line);
  const std::string whole = read_file(path("v.cmd"));
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  for (rlim_t size = 0; size < whole.size(); size += 50) {
    write_file("v.cmd", "");
    const rlimit full{size, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    start(line);
    ::setrlimit(RLIMIT_FSIZE, &before);
    const std::string written = read_file(path("v.cmd"));
    EXPECT_TRUE(written.empty() || written.ends_with("\r\n")) << written;
    for (const std::string& one : lines_with(written, "SET")) {
      EXPECT_TRUE(whole.find(one + "\r\n") != std::string::npos || one == "SET QV_RESULT=errors") << one;
    }
  }
  EXPECT_GT(count_of(err(), "The variables cannot be written to"), 3);
}

TEST_F(Program, LostOutputIsTold) {
  headless::desktop.out_fails = 112;
  EXPECT_EQ(start(disk_switch(0, "sectors 10\n") + "/D:0 /OP:READ"), 100'010U);
  EXPECT_EQ(count_of(err(), "The report cannot be written: error 112."), 1);
  EXPECT_EQ(count_of(err(), "The variables cannot be written to \"-\": error 112."), 6);
}

TEST_F(Program, MistakesAreOneLineAndOpenNoDisk) {
  const std::string disk = disk_switch(0, "sectors 10\n");
  for (const std::string line : {"/OP:READ",
                                 "/D:0 /D:1 /OP:READ",
                                 "/D:0 /OP:FORMAT",
                                 "/D:0 /OP:\"DESTRUCTIVE TEST\"",
                                 "/D:0 /OP:\"OFF-TRACK TEST\"",
                                 "/D:0 \"/OP:WRITE BUFFER\"",
                                 "/D:0 /OP:READ /OP:READ",
                                 "/D:0 /OP:READ /FOO",
                                 "/D:0 /OP:READ extra",
                                 "/D:0 /OP:SEARCH /FIND:\"tabc /START:5",
                                 "/D:0 /OP:READ /START:-1",
                                 "/D:0 /OP:READ /COUNT:0",
                                 "/D:0 /OP:READ /COUNT:1x",
                                 "/SLOW:fast",
                                 "/SLOW:0",
                                 "/REPORT:-",
                                 "/VARS:v",
                                 "/VDISK:9=a.img",
                                 "/VDISK:0=a.img /VDISK:0=b.img",
                                 "/VDISK:1=missing.vd",
                                 "/LIST /D:0 /OP:READ",
                                 "/LIST what",
                                 "/QUIET:yes",
                                 "/D:0 /REPORT:",
                                 "/D:9 /OP:READ"}) {
    headless::desktop = {};
    EXPECT_EQ(start(line.find("/VDISK") == 0 ? line : disk + line), 1U) << line;
    EXPECT_EQ(count_of(err(), "\n"), 1) << line << ": " << err();
    EXPECT_EQ(out(), line.find("/OP") == std::string::npos ? "" : "SET QV_RESULT=mistake\r\n\r\n") << line;
  }
}

TEST_F(Program, AnUnwritableReportIsRefusedBeforeTheDiskIsOpened) {
  EXPECT_EQ(start(disk_switch(0, "sectors 10\n") + "/D:0 /OP:READ /REPORT:" + path("no/such/folder")), 1U);
  EXPECT_THAT(err(), HasSubstr("cannot be made: error "));
}

TEST_F(Program, HelpAndListEndWithoutAWindow) {
  headless::desktop.out_fails = 112;
  EXPECT_EQ(start("/?"), 1U);
  EXPECT_EQ(start("/LIST " + disk_switch(6, "sectors 4096\n")), 1U);
  EXPECT_EQ(err(), "The list cannot be written: error 112.\r\n");
  headless::desktop = {};
  EXPECT_EQ(start("/? /OP"), 1U) << "a bad value is told even beside /?";
  EXPECT_EQ(start("/?"), 0U);
  EXPECT_THAT(out(), HasSubstr("/VDISK:n=FILE"));
  headless::desktop.out.clear();
  EXPECT_EQ(start("/list " + disk_switch(6, "sectors 4096\nmodel M\nserial S\nfirmware F\n")), 0U);
  EXPECT_EQ(out(), "6\tM\tS\tF\t4096\t2Mb\tSATA\r\n");
}

TEST_F(Program, WithoutAWindowOnlyARunCanStart) {
  EXPECT_EQ(start(""), 1U);
  EXPECT_THAT(err(), HasSubstr("No window can be made here"));
}

TEST_F(Program, ExitCodesAreSixteenBitAndKeepTheirSign) {
  output.ExitCode = 30000;
  add_to_exit_code(5000);
  EXPECT_EQ(output.ExitCode, 30000);
  add_to_exit_code(int64_t{1} << 40);
  EXPECT_EQ(output.ExitCode, 30000);
  output.ExitCode = -1;
  try {
    ExitProgram();
  } catch (const headless::ProcessEnded& end) {
    EXPECT_EQ(end.code, 4294967295U);
  }
}

TEST_F(Program, CancelSetsThreeAlsoWhenNothingRuns) {
  open(disk_switch(0, "sectors 10\n") + "/D:0");
  cmdCancel_Click();
  EXPECT_EQ(output.ExitCode, 3);
  EXPECT_FALSE(form1.CommandLineMode);
  EXPECT_EQ(form1.Text1.caret(), form1.Text1.text().size());
}

}  // namespace
