#include "ops/pinpoint.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "app/commands.h"
#include "app/handlers.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "pictures/progress_bar.h"
#include "results/results.h"
#include "tests/support/rig.h"
#include "virtualdisk/state.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kBad =
    "sectors 122880\nserial S1\nrate 100\nfail read 5000 8\nfail read 20480 1\nslow 70000 16 700\nslow 90016 8 450\n"
    "smart 197 0x0012 200 200 0 0\ngrow 197 1 on read-error\n";

class PinpointTest : public EachSectorSize {
 protected:
  static std::string read(const std::string& disk_file, const std::string& switches) {
    start(disk_switch(0, disk_file) + "/D:0 /OP:READ " + switches);
    return out();
  }
  static std::vector<std::string> ranges() {
    std::vector<std::string> found;
    for (const BadRange& range : run_findings.bad) {
      found.push_back(std::string(bad_kind_text(range.kind)) + " " + std::to_string(range.first_lba) + "+" +
                      std::to_string(range.sectors) + " " + std::to_string(range.code));
    }
    return found;
  }
};

TEST_P(PinpointTest, TheExactSectorsAreFound) {
  read(kBad, "/PINPOINT /BADLIST:" + path("bad.txt"));
  const std::string one = long_sectors() ? "unreadable 20480+8 23" : "unreadable 20480+1 23";
  EXPECT_THAT(ranges(), ElementsAre("unreadable 5000+8 23", one, "slow 70000+16 0", "slow 90016+8 0"));
  ASSERT_EQ(run_findings.bad.size(), 4U);
  EXPECT_NEAR(run_findings.bad[2].milliseconds, 700.0, 1.0);
  EXPECT_EQ(run_findings.pinpoint.looked_at, 4);
  EXPECT_EQ(run_findings.pinpoint.stopped, "");
  EXPECT_THAT(read_file(path("bad.txt")), StartsWith("5000,8,unreadable,23\r\n"));
  EXPECT_THAT(read_file(path("bad.txt")), EndsWith("\r\n70000,16,slow,0\r\n90016,8,slow,0\r\n"));
  EXPECT_THAT(out(), HasSubstr("unreadable: LBA 5000 to 5007, 8 sectors, error 23 - Data error (cyclic redundancy "
                               "check), up to "));
  EXPECT_THAT(out(), HasSubstr("SET QV_B_SLOW=24\r\nSET QV_B_PINPOINTED=YES\r\n"));
}

TEST_P(PinpointTest, NothingOfItIsCounted) {
  const std::string with = read(kBad, "/PINPOINT");
  const std::uint32_t code = static_cast<std::uint32_t>(exit_code());
  const std::string without = read(kBad, "");
  const auto counted = [](const std::string& text) { return text.substr(0, text.find("BAD PLACES")); };
  EXPECT_EQ(counted(with), counted(without)) << "SMART data, totals, rates, verdict";
  EXPECT_EQ(code, static_cast<std::uint32_t>(exit_code()));
  EXPECT_THAT(ranges(), ElementsAre("failed transfer 0+20480 23", "failed transfer 20480+20480 23",
                                    "stalled transfer 61440+20480 0", "stalled transfer 81920+20480 0"));
  EXPECT_THAT(
      without,
      HasSubstr(
          "Each range is a whole transfer. /PINPOINT reads them again in pieces, to find the exact sectors.\r\n"));
}

TEST_P(PinpointTest, NoSectorIsReadByItselfMoreThanTwiceAndNothingIsWritten) {
  read("sectors 40960\nfail read 300 3000\n", "/PINPOINT:100000,100000");
  EXPECT_EQ(std::count(headless::desktop.calls.begin(), headless::desktop.calls.end(), "LockFile"), 0);
  ASSERT_EQ(run_findings.bad.size(), 1U);
  EXPECT_EQ(run_findings.bad[0].kind, BadKind::unreadable);
  EXPECT_LE(run_findings.bad[0].first_lba, 300);
  EXPECT_GE(run_findings.bad[0].end_lba(), 3300);
  // Of 20480 sectors in pieces of 160: each failed one twice, the good ones around them once, and the halves.
  EXPECT_LE(run_findings.pinpoint.reads, 2 * (long_sectors() ? 376 : 3000) + 2 * 256 + 200);
}

TEST_P(PinpointTest, ASectorThatAnswersTheSecondTimeIsSlow) {
  open_on("sectors 40960\nfail read 1000 8\n");
  click(CmdRead_Click);
  click(find_exact_sectors);
  const std::int64_t second_round = run_findings.pinpoint.reads - (long_sectors() ? 1 : 8);
  headless::desktop.at_pump = [second_round](int) {
    const Pinpoint& told = run_findings.pinpoint;
    if (told.running && told.reads >= second_round) virtualdisk::state.disks[0]->faults = {};
  };
  click(CmdRead_Click);
  click(find_exact_sectors);
  EXPECT_THAT(ranges(), ElementsAre("slow 1000+8 0"));
}

TEST_P(PinpointTest, ATransferThatReadsWellAgainIsNoBadPlace) {
  open_on("sectors 40960\nfail read 1000 8\n");
  headless::desktop.at_pump = [](int) {
    if (run_findings.pinpoint.running) virtualdisk::state.disks[0]->faults = {};
  };
  click(CmdRead_Click);
  click(find_exact_sectors);
  EXPECT_THAT(ranges(), ElementsAre());
  EXPECT_THAT(form1.Text1.text(), HasSubstr("1 could be read again without trouble.\r\n"));
}

TEST_P(PinpointTest, LimitsAndCancelLeaveWhatIsNotSplit) {
  read("sectors 122880\nrate 100\nslow 70000 2000 700\nfail read 5000 8\n", "/PINPOINT:20");
  EXPECT_EQ(run_findings.pinpoint.stopped, "its time of 20 s was over");
  EXPECT_THAT(ranges(), ::testing::Contains("unreadable 5000+8 23")) << "failures come first";
  EXPECT_THAT(ranges(), ::testing::Contains(StartsWith("stalled transfer ")));
  std::int64_t end = 0;
  for (const BadRange& range : run_findings.bad) {
    EXPECT_GE(range.first_lba, end) << "no two overlap";
    end = range.end_lba();
  }
  read("sectors 40960\nfail read 300 3000\n", "/PINPOINT:1000,40");
  EXPECT_EQ(run_findings.pinpoint.stopped, "40 reads had failed");
  EXPECT_THAT(out(), HasSubstr("SET QV_B_PINPOINTED=PARTLY\r\n"));
}

TEST_P(PinpointTest, CancelEndsItAndNotTheRun) {
  open_on(kBad);
  headless::desktop.at_pump = [](int) {
    if (!run_findings.pinpoint.running || run_findings.pinpoint.reads < 20) return;
    EXPECT_THAT(progress_words().what, StartsWith("pinpointing 1 of 4"));
    EXPECT_THAT(form1.TxtStatus.text(), StartsWith("Pinpointing at sector "));
    cmdCancel_Click();
  };
  click(CmdRead_Click);
  click(find_exact_sectors);
  EXPECT_EQ(run_findings.pinpoint.stopped, "cancelled");
  EXPECT_EQ(output.ExitCode, 2) << "of the run: two failed transfers";
  EXPECT_FALSE(measure.stopped);
  EXPECT_EQ(count_of(form1.Text1.text(), "CANCELLED"), 0);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Finished!"));
  EXPECT_THAT(form1.TxtStatus.text(), StartsWith("122880 sectors in ")) << "the run's last status stands again";
}

TEST_P(PinpointTest, ADriveThatIsGoneIsNotBad) {
  open_on("sectors 122880\nfail read 5000 8\nvanish 20\n");
  click(CmdRead_Click);
  click(find_exact_sectors);
  EXPECT_THAT(run_findings.pinpoint.stopped, StartsWith("the drive does not answer: error 1167"));
  for (const BadRange& range : run_findings.bad) EXPECT_NE(range.code, 1167U);
}

TEST_P(PinpointTest, AWindowReadsAFailingDiskAgainOnlyWhenAsked) {
  open_on(kBad);
  headless::desktop.answers = {"tnowhere"};
  click(CmdFind_Click);
  EXPECT_FALSE(run_findings.pinpoint.made);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Each range is a whole transfer. More... > Find exact bad sectors reads "));
  EXPECT_EQ(why_no_exact_search(), "");
  const std::string report = form1.Text1.text();
  click(find_exact_sectors);
  EXPECT_EQ(run_findings.bad.size(), 4U);
  EXPECT_THAT(form1.Text1.text(), StartsWith(report)) << "a block is added, the rest stays";
  EXPECT_THAT(form1.Text1.text().substr(report.size()),
              HasSubstr("BAD PLACES\r\n==========\r\nunreadable: LBA 5000 to "));
  EXPECT_EQ(results.last->findings.bad.size(), 4U) << "for the page that the user may save";
  EXPECT_EQ(why_no_exact_search(), "The bad sectors of the last command are exact already.");
}

TEST_P(PinpointTest, AFailedReadReadsNothingButItsRange) {
  open_on("sectors 122880\nfail read 0 8\nfail read 90000 8\n");
  range("81920", "40960");
  headless::desktop.calls.clear();
  click(CmdRead_Click);
  EXPECT_EQ(std::ranges::count(headless::desktop.calls, "ReadFile"), 2) << "no partition table";
}

TEST_P(PinpointTest, OnlyTheDriveOfTheLastRunIsReadAgain) {
  open(disk_switch(0, kBad) + disk_switch(1, "sectors 122880\nserial S2\n"));
  EXPECT_EQ(why_no_exact_search(), "Run READ or SEARCH first.");
  click(CmdRead_Click);
  click(Option2_Click);
  EXPECT_EQ(why_no_exact_search(), "The last command ran on another drive.");
  headless::desktop.calls.clear();
  click(find_exact_sectors);
  EXPECT_THAT(headless::desktop.calls, testing::IsEmpty());
  click(CmdRead_Click);
  EXPECT_EQ(why_no_exact_search(), "No transfer of the last READ or SEARCH failed or stalled.");
}

TEST_P(PinpointTest, ACancelledRunSaysWhereAndHowMuchIsMissing) {
  open_on("sectors 204800\n");
  headless::desktop.at_pump = [](int) {
    if (measure.done >= 40960) cmdCancel_Click();
  };
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("\r\n\r\nRUN\r\n===\r\nCANCELLED at LBA 40960: 80 % not read\r\n"));
  EXPECT_FALSE(run_findings.pinpoint.made);
}

ON_EACH_SECTOR_SIZE(PinpointTest);

using PracticePinpoint = Rig;

TEST_F(PracticePinpoint, BothPlacesOfThePracticeDiskAreFoundInHalfAMinute) {
  open("/VDISK:0=DEMO");
  click(CmdRead_Click);
  click(find_exact_sectors);
  ASSERT_EQ(run_findings.bad.size(), 2U);
  EXPECT_EQ(lba_text(run_findings.bad[0]), "LBA 624000 to 624007");
  EXPECT_EQ(lba_text(run_findings.bad[1]), "LBA 1249248 to 1249311");
  EXPECT_EQ(run_findings.bad[1].kind, BadKind::slow);
  EXPECT_LT(run_findings.pinpoint.seconds, 30.0);
}

}  // namespace
