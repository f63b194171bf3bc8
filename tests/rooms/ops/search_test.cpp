#include <gmock/gmock.h>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "ops/operations.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class DiskSearch : public EachSectorSize {
 protected:
  /// An image of `sectors` zero sectors with `text` at byte `at`, searched for `search` from sector `start`.
  void search(std::int64_t sectors, std::size_t at, const std::string& text, const std::string& search_string,
              const std::string& directives = "") {
    std::string contents(static_cast<std::size_t>(sectors * SectorSize), '\0');
    contents.replace(at, text.size(), text);
    write_file("a.img", contents);
    open_on("image a.img\n" + directives);
    headless::desktop.answers.push_back(search_string);
    click(CmdFind_Click);
  }
};

TEST_P(DiskSearch, AMatchShowsItsSector) {
  search(30000, 25000 * 512 + 100, "Find Me", "TfIND mE");
  EXPECT_EQ(form1.TxtStartLBA.text(), "25000");
  EXPECT_EQ(form1.TxtStatus.text(),
            "Stopped at block 25000\r\nFound match for TfIND mE at address 64 hex in buffer (0-1FF)");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("[Sector 25000]  12MB"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("============= SECTOR DATA (up to first 20 sectors)"));
  EXPECT_EQ(disk.Sec_Buf.size(), 512);
}

TEST_P(DiskSearch, NoMatchStopsAtTheFirstLbaNotRead) {
  search(17000, 0, "abc", "tABC");
  EXPECT_EQ(form1.TxtStatus.text(), "Stopped at block 17000\r\nNo match for search string tABC");
  EXPECT_EQ(counters.Sectors_Done, 17000);
}

TEST_P(DiskSearch, AMatchAcrossSectorsBelongsToItsFirstByteAndAcrossChunksOfShortOnesIsNone) {
  search(104, 10 * 512 - 2, "XYZ", "tXYZ");
  EXPECT_THAT(form1.TxtStatus.text(), EndsWith("Found match for tXYZ at address 1FE hex in buffer (0-1FF)"));
  EXPECT_EQ(form1.TxtStartLBA.text(), "9");
  search(17000, chunk() * 512 - 1, "XYZ", "tXYZ");
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr(long_sectors() ? "Stopped at block 16063\r\nFound match" : "No match"));
}

TEST_P(DiskSearch, AnUnreadableChunkIsReportedAndNotSearched) {
  search(30000, 100, "XYZ", "tXYZ", "fail read 5000 1\n");
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Error Reading Sector 0 for 20480 sectors.\r\nERROR: 23 - "));
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("Stopped at block 30000\r\nNo match"));
  EXPECT_EQ(output.ExitCode, 0) << "the search has no totals";
}

TEST_P(DiskSearch, WhatAShortLastChunkDoesNotHoldIsNotFound) {
  search(20480 + 16, 15000 * 512, "only in the first chunk", "!H00", "fail read 0 1\n");
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("Stopped at block 20496\r\nNo match"));
}

TEST_P(DiskSearch, ABadPrefixIsAskedAgainAndBadHexToldOnce) {
  open_on("sectors 104\n");
  headless::desktop.answers = {"xyz", "OK", "H05 3", "OK"};
  click(CmdFind_Click);
  ASSERT_EQ(headless::desktop.boxes.size(), 4U);
  EXPECT_EQ(headless::desktop.boxes[1].text, "Search string must begin with t or T or H or !H");
  EXPECT_EQ(headless::desktop.boxes[3].text, "Hex values must be in twos");
  EXPECT_EQ(counters.Sectors_Done, 0);
  EXPECT_EQ(form1.TxtStatus.text(), "Stopped at block 0\r\nNo match for search string H05 3");
}

TEST_P(DiskSearch, FromTheCommandLineThePlaceIsAVariable) {
  std::string contents(100 * 512, '\0');
  contents[60 * 512 + 3] = 'Q';
  write_file("a.img", contents);
  EXPECT_EQ(start("/VDISK:0=" + path("a.img") + " /D:0 /OP:SEARCH /FIND:!H00"), 0U);
  EXPECT_THAT(out(), HasSubstr("\r\nSET QV_D_FOUND_LBA=60\r\nSET QV_D_FOUND_OFFSET=3\r\n"));
  EXPECT_THAT(out(), HasSubstr("[Sector 60]  0MB"));
  headless::desktop.out.clear();
  EXPECT_EQ(start("/VDISK:0=" + path("a.img") + " /D:0 /OP:SEARCH /FIND:tnothing"), 0U);
  EXPECT_THAT(out(), HasSubstr("\r\nSET QV_D_FOUND_LBA=\r\nSET QV_D_FOUND_OFFSET=\r\n"));
}

TEST_P(DiskSearch, CancelStopsBeforeTheNextRead) {
  headless::desktop.at_pump = [](int pump) {
    if (pump == 2) form1.MyCancel = true;
  };
  search(100000, 50000 * 512, "XYZ", "tXYZ");
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("Stopped at block 20480\r\nNo match"));
}

TEST_P(DiskSearch, AReadThatIsGivenUpEndsItWhereItStands) {
  headless::desktop.gives_up_reads = true;
  search(30000, 25000 * 512, "Find Me", "tFind Me", "slow 20480 1 40000\n");
  EXPECT_EQ(form1.TxtStartLBA.text(), "20480") << "the first LBA that was not read";
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("ERROR:")));
  EXPECT_EQ(output.ExitCode, 3);
}

TEST_P(DiskSearch, CancelDuringTheChunkOfTheMatchEndsItAsCancelled) {
  std::string contents(100 * 512, '\0');
  contents[60 * 512 + 3] = 'Q';
  write_file("a.img", contents);
  const std::string run = "/VDISK:0=" + path("a.img") + " /D:0 /OP:SEARCH /FIND:tQ";
  start(run);
  const int pumps = headless::desktop.pumps;
  std::vector<std::uint32_t> codes;
  for (int at = pumps - 3; at <= pumps; ++at) {
    headless::desktop = {};
    headless::desktop.at_pump = [at](int pump) {
      if (pump == at) headless::press_control_c();
    };
    codes.push_back(start(run));
    const bool in_buffer = at >= pumps - 1;
    EXPECT_EQ(out().find("QV_D_FOUND_LBA=60\r\n") != std::string::npos, at > pumps - 3) << at;
    EXPECT_EQ(out().find("in buffer (0-1FF)") != std::string::npos, in_buffer) << at;
    EXPECT_EQ(out().find("QV_RESULT=cancelled\r\n") != std::string::npos, at < pumps) << at;
  }
  EXPECT_THAT(codes, ElementsAre(3U, 3U, 3U, 0U))
      << "before the chunk, in it, in the read of the match's sector, and after the end";
}

TEST_P(DiskSearch, AMatchWhoseSectorCannotBeReadAgainHasNoAddressInTheBuffer) {
  headless::desktop.at_pump = [](int) {
    if (headless::desktop.fail_first != 0 || !form1.TxtStatus.text().starts_with("At sector 0 and reading")) return;
    headless::desktop.fail_first = headless::desktop.fail_last = headless::desktop.calls_made + 1;
    headless::desktop.fail_code = 23;
  };
  search(104, 60 * 512 + 100, "Find Me", "tFind Me");
  EXPECT_EQ(form1.TxtStatus.text(),
            "Stopped at block 60\r\nA match for tFind Me begins in this sector, which is not in the buffer: "
            "reading it again failed with error 23 - (No such error)");
  EXPECT_EQ(count_of(form1.Text1.text(), "[Sector "), 0);
}

TEST_P(DiskSearch, AnEmptyAnswerDoesNothing) {
  open_on("sectors 104\n");
  form1.TxtStatus.set_text("as it was");
  headless::desktop.calls.clear();
  headless::desktop.answers = {""};
  click(CmdFind_Click);
  EXPECT_EQ(form1.TxtStatus.text(), "as it was");
  EXPECT_THAT(headless::desktop.calls, IsEmpty());
}

ON_EACH_SECTOR_SIZE(DiskSearch);

}  // namespace
