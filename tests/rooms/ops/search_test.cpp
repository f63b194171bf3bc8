#include <gmock/gmock.h>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "ops/operations.h"
#include "tests/support/rig.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

class DiskSearch : public EachSectorSize {
 protected:
  /// An image of `sectors` zero sectors with `text` at byte `at`, searched for `search` from sector `start`.
  void search(std::int64_t sectors, std::size_t at, const std::string& text, const std::string& search_string,
              const std::string& directives = "") {
    std::string contents(static_cast<std::size_t>(sectors * kSectorSize), '\0');
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

ON_EACH_SECTOR_SIZE(DiskSearch);

}  // namespace
