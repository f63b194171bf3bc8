// What was written, read back and compared: by /OP:VERIFY, and behind a write whose question was answered so.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/volume.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/measure.h"
#include "ops/operations.h"
#include "pictures/progress_bar.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::int64_t kDisk = 48'200;  // three chunks and some

class Verify : public EachSectorSize {
 protected:
  /// Runs the program with /OP on drive 0, an image of zeros with `directives` more.
  std::uint32_t run_op(const std::string& switches, const std::string& directives = "") {
    return start("/VDISK:0=" + disk_file(directives) + " /D:0 " + switches);
  }

  std::string disk_file(const std::string& directives) {
    if (!std::filesystem::exists(path("a.img"))) write_file("a.img", std::string(kDisk * 512, '\0'));
    return write_file("d.vd", "image a.img\nserial S\n" + directives);
  }

  void poke(std::int64_t byte, char value) {
    std::string contents = read_file(path("a.img"));
    contents.at(static_cast<std::size_t>(byte)) = value;
    write_file("a.img", contents);
  }

  /// Writes the whole disk in the window, with the check box of the question as `answer` leaves it.
  void write_in_window(const std::string& directives, const std::string& answer) {
    open("/VDISK:0=" + disk_file(directives));
    headless::desktop.answers = {answer};
    click(CmdWrite_Click);
  }
};

TEST_P(Verify, AgreesWithWhatAWriteWritesForEveryPatternAndRange) {
  for (const char* pattern : {"7F", "0102", "010203", "01020304"}) {
    for (const char* range : {"/START:0 /COUNT:16066", "/START:3 /COUNT:16066", "/START:5 /COUNT:16064",
                              "/START:13 /COUNT:32131", "/START:7 /COUNT:2", "/START:8 /COUNT:48192"}) {
      const std::string run = std::string(" /QUIET /PATTERN:") + pattern + " " + range;
      ASSERT_EQ(run_op("/OP:WRITE /SERIAL:S" + run), 0U) << run;
      EXPECT_EQ(run_op("/OP:VERIFY" + run), 0U) << run << out();
      EXPECT_EQ(verify_run.compared, verify_run.chunks) << run;
    }
  }
}

TEST_P(Verify, NamesTheFirstDifferentByteOfEachChunkAndEndsWithTheirNumber) {
  run_op("/OP:WRITE /SERIAL:S /PATTERN:010203");
  for (const std::int64_t byte : {chunk() * 512 - 1, chunk() * 512, 40'000 * 512L + 17, 40'001 * 512L}) poke(byte, 'x');
  EXPECT_EQ(run_op("/OP:VERIFY /PATTERN:010203 /JSON:" + path("r.json")), 3U);
  const std::string size = std::to_string(chunk());
  EXPECT_THAT(lines_with(out(), "Compare error at"),
              ElementsAre("Compare error at LBA " + std::to_string(chunk() - 1) + " byte 511: 1 of the " + size +
                              " sectors from LBA 0 differ.",
                          "Compare error at LBA " + size + " byte 0: 1 of the " + size + " sectors from LBA " + size +
                              " differ.",
                          "Compare error at LBA 40000 byte 17: 2 of the " + size + " sectors from LBA " +
                              std::to_string(2 * chunk()) + " differ."));
  EXPECT_THAT(out(), HasSubstr("VERIFY: 3 of 4 chunks differ, first difference at LBA " + std::to_string(chunk() - 1) +
                               " byte 511.\r\n"));
  EXPECT_THAT(out(), HasSubstr("\r\nSET QV_V_DIFFERENCES=3\r\nSET QV_V_NOT_COMPARED=0\r\nSET QV_V_FIRST_LBA=" +
                               std::to_string(chunk() - 1) + "\r\nSET QV_V_FIRST_OFFSET=511\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_D_TOTERR=0\r\nSET QV_D_READERR=0\r\nSET QV_D_WRITEERR=0\r\nSET QV_D_CMPERR=3"));
  const auto told = nlohmann::json::parse(read_file(path("r.json")));
  EXPECT_EQ(told["operation"]["name"], "verify");
  EXPECT_EQ(told["slowest"][0]["operation"], "verify");
  EXPECT_EQ(told["verify"]["pattern"], "010203");
  EXPECT_EQ(told["verify"]["differing"], 3);
  EXPECT_EQ(told["verify"]["differences"][2], (nlohmann::json{{"lba", 40000}, {"offset", 17}, {"sectors", 2}}));
}

TEST_P(Verify, FindsWritesThatWereLostAndThatWentAstray) {
  EXPECT_EQ(run_op("/OP:WRITE /SERIAL:S", "drop 800 8\nstray 40000 8 -800\n"), 0U);
  EXPECT_EQ(run_op("/OP:VERIFY"), 2U);
  EXPECT_EQ(verify_run.listed.at(0).lba, 800);
  EXPECT_EQ(verify_run.listed.at(0).sectors, 8);
  EXPECT_EQ(verify_run.listed.at(1).lba, 40000);
  EXPECT_THAT(out(), HasSubstr("DOUBTFUL: 2 compare errors in the run"));
}

TEST_P(Verify, WhatCannotBeReadIsAFailedReadAndNotCompared) {
  EXPECT_EQ(run_op("/OP:VERIFY /PATTERN:00", "fail read 20000 1\n"), 1U);
  EXPECT_THAT(out(), HasSubstr("Error Reading Sector " + std::to_string(chunk()) + " for "));
  EXPECT_THAT(out(), HasSubstr("VERIFY: 0 of 4 chunks differ from the pattern 00. 1 could not be read.\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_V_DIFFERENCES=0\r\nSET QV_V_NOT_COMPARED=1\r\nSET QV_V_FIRST_LBA=\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_D_TOTERR=1\r\nSET QV_D_READERR=1\r\nSET QV_D_WRITEERR=0\r\nSET QV_D_CMPERR=0"));
}

TEST_P(Verify, ACancelledOneTellsWhatWasNotRead) {
  headless::desktop.at_pump = [](int) {
    if (counters.Sectors_Done > 20'000) headless::press_control_c();
  };
  EXPECT_EQ(run_op("/OP:VERIFY /PATTERN:01"), 5U) << "cancelled, and two chunks that differ";
  EXPECT_THAT(out(),
              HasSubstr("VERIFY: 2 of 4 chunks differ, first difference at LBA 0 byte 0. CANCELLED: 2 were not"));
}

TEST_P(Verify, TheFirstThousandDifferencesAreListedAndNoNumberOfThemEndsWithZero) {
  headless::desktop.at_pump = [](int) {
    if (verify_run.compared == 1 && verify_run.differing == 1) {
      verify_run.listed.resize(VerifyRun::kMostListed - 1);
      verify_run.differing = 40'000;
    }
  };
  EXPECT_EQ(run_op("/OP:VERIFY /PATTERN:01"), 32'767U);
  EXPECT_EQ(count_of(out(), "Compare error at"), 2);
  EXPECT_THAT(out(), HasSubstr("\r\n39003 more chunks differ.\r\n"));
}

TEST_P(Verify, AReadBackAfterAWriteIsAPhaseOfItsOwn) {
  bool locked = false;
  int lock_passes = 0;
  headless::desktop.at_pump = [&](int) {
    if (form1.TxtStatus.text().rfind("Reading back ", 0) != 0 || locked) return;
    locked = volumes.hVolumes[0] > 0;
    lock_passes = count_of(headless::desktop.debug, "Volume X: locked");
    EXPECT_THAT(progress_words().what, HasSubstr("verifying "));
  };
  write_in_window("drop 20000 8\nvolume X:\n", "OK TICKED");
  EXPECT_TRUE(locked);
  EXPECT_EQ(lock_passes, 2);
  const std::string text = form1.Text1.text();
  const std::vector<std::string> order = {"SMART DATA AFTER OPERATION",
                                          "\r\n\r\nREAD BACK\r\n=========\r\nVerifying 48200 sectors starting at LBA 0 "
                                          "on drive 0 with pattern 2C2CAA55\r\n",
                                          "Compare error at LBA 20000 byte 0: 8 of",
                                          "The drive's volumes were unlocked between the write and this",
                                          "\nHEALTH\r\n",
                                          "VERIFY: 1 of 4 chunks differs, first difference at LBA 20000 byte 0."};
  std::size_t at = 0;
  for (const std::string& part : order) {
    const std::size_t found = text.find(part, at);
    ASSERT_NE(found, std::string::npos) << part << "\n" << text;
    at = found;
  }
  EXPECT_THAT(text, HasSubstr("DOUBTFUL: 1 compare error in the run"));
  EXPECT_THAT(text, HasSubstr("SET QV_RESULT=errors"));
  EXPECT_EQ(output.ExitCode, 1);
  EXPECT_EQ(count_of(headless::desktop.debug, "Volume unlocked"), 2);
  EXPECT_EQ(virtualdisk::open_handles(), 0);
}

TEST_P(Verify, AReadBackChangesNothingOfTheWritesFigures) {
  std::vector<std::string> reports;
  for (const char* answer : {"OK", "OK TICKED"}) {
    std::filesystem::remove(path("a.img"));
    headless::desktop = {};
    // Longer than 70 seconds, and much shorter when it is read back.
    headless::desktop.at_pump = [](int) { headless::pass_time(counters.TotalWErrors > 0 ? 1 : 30); };
    write_in_window("fail write 48190 1\nslow 0 20000 1000\nsmart 9 0x0032 89 89 0 432000\ngrow 9 125 on write-error\n",
                    answer);
    const std::string& text = form1.Text1.text();
    EXPECT_EQ(count_of(text, "READ BACK"), answer == std::string("OK") ? 0 : 1);
    EXPECT_THAT(text, HasSubstr("Slow xfer"));
    EXPECT_THAT(text, HasSubstr("SET QV_S_FINAL_POWER_ON_HOURS=2\r\n")) << "divided twice";
    reports.push_back(text.substr(0, std::min(text.find("\r\n\r\nREAD BACK"), text.find("\r\n\r\nHEALTH"))));
    if (long_sectors()) reports.back().resize(std::min(reports.back().size(), text.find("\r\n\r\nSECTORS")));
  }
  EXPECT_EQ(reports[0], reports[1]);
  EXPECT_EQ(counters.TotalErrors, 1);
  EXPECT_EQ(measure.done, kDisk);
}

TEST_P(Verify, WhatCannotBeReadBackCountsAndADriveThatChangedIsNotReadBack) {
  write_in_window("fail read 20000 1\n", "OK TICKED");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("could not be read back: error 23 - "));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("from the pattern 2C2CAA55. 1 could not be read.\r\n"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_TOTERR=0\r\nSET QV_D_READERR=0"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("DOUBTFUL: 1 transfer of the run failed"));
  EXPECT_EQ(output.ExitCode, 1);
  headless::desktop.at_pump = [](int) {
    if (counters.Sectors_Done < kDisk) return;
    virtualdisk::detach_all();
    ASSERT_EQ(virtualdisk::attach(0, write_file("e.vd", "image a.img\nserial OTHER\n")), "");
  };
  headless::desktop.answers = {"OK TICKED"};
  click(CmdWrite_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("VERIFY: not done, since drive 0 is not the one that was written to"));
}

TEST_P(Verify, ACancelledReadBackSaysWhatWasNotRead) {
  headless::desktop.at_pump = [](int) {
    if (verify_run.compared == 1) cmdCancel_Click();
  };
  write_in_window("", "OK TICKED");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("VERIFY: 0 of 4 chunks differ from the pattern 2C2CAA55. CANCELLED: 3 were "
                                            "not read."));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_RESULT=cancelled"));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("not written")));
  EXPECT_EQ(output.ExitCode, 3);
}

TEST_P(Verify, LeavingDuringAReadBackLeavesTheResultOfTheWrite) {
  headless::desktop.at_pump = [](int) {
    if (verify_run.compared == 1) CmdExit_Click();
  };
  open("/D:0 /JSON:" + path("r.json") + " /VDISK:0=" + disk_file(""));
  click(cmdCancel_Click);  // ends command-line mode, in which nothing asks
  headless::desktop.answers = {"OK TICKED"};
  EXPECT_TRUE(click(CmdWrite_Click));
  const auto told = nlohmann::json::parse(read_file(path("r.json")));
  EXPECT_EQ(told["operation"]["name"], "write");
  EXPECT_EQ(told["totals"]["sectors"], kDisk);
  EXPECT_EQ(told["verify"]["after_write"], true);
  EXPECT_EQ(told["verify"]["compared"], 1);
  EXPECT_EQ(told["outcome"], "cancelled");
}

TEST_P(Verify, ADriveThatIsGoneEndsItsReadBack) {
  write_in_window("vanish 4\n", "OK TICKED");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_TOTERR=0"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("VERIFY: not done, since drive 0 does not answer any more."));
  virtualdisk::detach_all();
  write_in_window("vanish 5\n", "OK TICKED");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_TOTERR=0"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("differ from the pattern 2C2CAA55. 3 could not be read.\r\n"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_RESULT=errors"));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("\r\nRUN\r\n")));
}

TEST_P(Verify, WithoutATickAWriteIsWhatItWas) {
  write_in_window("drop 20000 8\n", "OK");
  EXPECT_EQ(headless::desktop.boxes.at(0).check_box, "&Read back and compare afterwards");
  EXPECT_FALSE(headless::desktop.boxes.at(0).ticked);
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("erify")));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("VERIFY")));
  EXPECT_EQ(measure.done, kDisk);
  EXPECT_EQ(output.ExitCode, 0);
}

TEST_P(Verify, TheTickStaysAndACancelledQuestionChangesNothing) {
  write_in_window("", "OK TICKED");
  for (const char* answer : {"CANCEL", "OK UNTICKED", "OK"}) {
    headless::desktop.answers.emplace_back(answer);
    click(CmdWrite_Click);
  }
  std::vector<bool> shown;
  for (const headless::Box& box : headless::desktop.boxes) shown.push_back(box.ticked);
  EXPECT_THAT(shown, ElementsAre(false, true, true, false));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("VERIFY")));
}

TEST_P(Verify, ACancelledWriteIsNotReadBack) {
  open("/VDISK:0=" + disk_file(""));
  headless::desktop.at_pump = [](int) {
    if (counters.Sectors_Done > 20'000) cmdCancel_Click();
  };
  headless::desktop.answers = {"OK TICKED"};
  click(CmdWrite_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("VERIFY: not done, since the write was cancelled.\r\n"));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("Verifying")));
  EXPECT_EQ(output.ExitCode, 3);
}

TEST_P(Verify, TheBufferHoldsThePatternBehindItAsBehindAnyWrite) {
  write_in_window("drop 48190 10\nfail read 0 1\n", "OK TICKED");
  const std::int64_t sectors = disk.Buf_Secs;
  const std::int64_t lba = disk.Buf_LBA;
  EXPECT_EQ(disk.Sec_Buf.bytes()[511], 0x55);
  EXPECT_EQ(disk.source.kind, Source::Kind::pattern);
  headless::desktop.answers = {"OK UNTICKED"};
  click(CmdWrite_Click);
  EXPECT_EQ(disk.Buf_Secs, sectors);
  EXPECT_EQ(disk.Buf_LBA, lba);
}

ON_EACH_SECTOR_SIZE(Verify);

}  // namespace
