// Disks whose sectors have 4096 bytes: what is sent to them, and what is said of it.

#include "disk/whole_sectors.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "platform/bytes.h"
#include "smart/identification.h"
#include "smart/identify_data.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::int64_t kSectors = 40000;

class WholeSectors : public Rig {
 protected:
  WholeSectors() : pristine_(read_file(write_image("a.img", kSectors))) {}

  static std::string disk_file(const std::string& directives = "") {
    return "image a.img\nserial S1\nlogical 4096\n" + directives;
  }
  static std::string switches(const std::string& directives = "") { return disk_switch(0, disk_file(directives)); }

  static std::string image() { return read_file(path("a.img")); }

  /// The image with `sectors` sectors from `lba` on filled with the byte A5.
  std::string with_pattern(std::int64_t lba, std::int64_t sectors) const {
    std::string expected = pristine_;
    expected.replace(lba * 512, sectors * 512, std::string(sectors * 512, '\xA5'));
    return expected;
  }

  static std::uint32_t write(std::int64_t lba, std::int64_t sectors, const std::string& directives = "") {
    headless::desktop = {};
    return start(switches(directives) + "/D:0 /OP:WRITE /SERIAL:S1 /PATTERN:A5 /START:" + std::to_string(lba) +
                 " /COUNT:" + std::to_string(sectors));
  }

  static std::int64_t reads_made() {
    const auto& calls = headless::desktop.calls;
    return std::count(calls.begin(), calls.end(), "ReadFile");
  }

  std::string pristine_;
};

TEST_F(WholeSectors, AreTheSmallestThatHoldWhatIsAskedFor) {
  EXPECT_EQ(widened({7, 3}), (Stretch{7, 3})) << "512 bytes";
  disk.sizes = {.logical = 4096, .physical = 4096};
  EXPECT_EQ(widened({8, 16}), (Stretch{8, 16}));
  EXPECT_EQ(widened({7, 1}), (Stretch{0, 8}));
  EXPECT_EQ(widened({7, 2}), (Stretch{0, 16}));
  EXPECT_EQ(widened({8, 1}), (Stretch{8, 8}));
  EXPECT_EQ(whole_below(16065), 16064);
}

TEST_F(WholeSectors, TheSizesComeFromTheDriverElseTheGeometryElseIdentify) {
  struct Case {
    const char* directives;
    std::int64_t logical;
    std::int64_t physical;
  };
  for (const auto& [directives, logical_bytes, physical_bytes] :
       {Case{"", 512, 512}, Case{"physical 4096\n", 512, 4096}, Case{"logical 4096\n", 4096, 4096},
        Case{"logical 4096\nbus nvme\n", 4096, 4096}, Case{"physical 4096\nbus sas\n", 512, 4096},
        Case{"logical 4096\nbus usb\n", 4096, 4096}, Case{"logical 4096\ngeometry none\n", 4096, 4096}}) {
    attach(0, std::string("sectors 240000\n") + directives);
    OpenDrive(0);
    ASSERT_TRUE(Check_drv(0)) << directives;
    EXPECT_EQ(disk.sizes.logical, logical_bytes) << directives;
    EXPECT_EQ(disk.sizes.physical, physical_bytes) << directives;
    close_drive();
    virtualdisk::detach_all();
  }
}

TEST_F(WholeSectors, EverySourceOfTheDisksSizeCountsInThem) {
  for (const char* told : {"geometry none\nlength none\n", "bus sas\ngeometry none\nlength none\n",
                           "bus usb\nlength none\n", "bus nvme\ngeometry none\n"}) {
    attach(0, std::string("sectors 257040\nlogical 4096\n") + told);
    OpenDrive(0);
    ASSERT_TRUE(Check_drv(0)) << told;
    EXPECT_EQ(identification.Drive_Sectors, 257040) << told << "two cylinders of 4096 bytes";
    close_drive();
    virtualdisk::detach_all();
  }
}

TEST_F(WholeSectors, IdentifyIsBelievedWhereItsWordsAreValid) {
  std::vector<std::uint8_t> page(512);
  const auto sizes = [&](unsigned word, unsigned words, unsigned alignment) {
    bytes::put_le(page, 212, 2, word);
    bytes::put_le(page, 234, 4, words);
    bytes::put_le(page, 418, 2, alignment);
    const SectorSizes found = decode_identify(page).sizes;
    return std::vector<std::int64_t>{found.logical, found.physical, found.offset};
  };
  using Sizes = std::vector<std::int64_t>;
  EXPECT_EQ(sizes(0x6003, 0, 0), (Sizes{512, 4096, 0}));
  EXPECT_EQ(sizes(0x6003, 0, 0x4001), (Sizes{512, 4096, 512})) << "a jumper for old partition tables";
  EXPECT_EQ(sizes(0x5000, 2048, 0), (Sizes{4096, 4096, 0}));
  EXPECT_EQ(sizes(0x6003 | 0x8000, 0, 0), (Sizes{512, 512, 0})) << "not valid";
  EXPECT_EQ(sizes(0xFFFF, 2048, 0), (Sizes{512, 512, 0}));
  EXPECT_EQ(sizes(0x5000, 260, 0), (Sizes{512, 512, 0})) << "520 bytes are no power of two";
  EXPECT_EQ(sizes(0x600F, 0, 0), (Sizes{512, 512, 0})) << "16 MiB are none";
}

TEST_F(WholeSectors, AlignmentRepliesThatNoDiskGivesAreNotBelieved) {
  std::vector<std::uint8_t> reply(28);
  const auto physical_of = [&](std::uint32_t logical_bytes, std::uint32_t physical_bytes) -> std::int64_t {
    bytes::put_le(reply, 16, 4, logical_bytes);
    bytes::put_le(reply, 20, 4, physical_bytes);
    const auto sizes = decode_sector_sizes(reply);
    return sizes ? sizes->physical : 0;
  };
  EXPECT_EQ(physical_of(512, 4096), 4096);
  EXPECT_EQ(physical_of(4096, 512), 4096);
  EXPECT_EQ(physical_of(4096, 0), 4096);
  for (const std::uint32_t none : {0U, 256U, 520U, 131072U, 0x80000000U}) EXPECT_EQ(physical_of(none, 4096), 0) << none;
  EXPECT_FALSE(decode_sector_sizes(std::vector<std::uint8_t>(27, 0)));
}

TEST_F(WholeSectors, APartIsReadChangedAndWrittenBackAndNothingElse) {
  for (const auto& [lba, sectors] : {std::pair{3, 2}, {3, 5}, {8, 3}, {5, 30}, {7, 16066}, {15, 35000}}) {
    ASSERT_EQ(image(), pristine_);
    EXPECT_EQ(write(lba, sectors), 0U) << err();
    EXPECT_TRUE(image() == with_pattern(lba, sectors)) << lba << " " << sectors;
    EXPECT_THAT(out(), HasSubstr("Writing " + std::to_string(sectors) + " sectors starting at LBA "));
    EXPECT_THAT(out(), HasSubstr("LBA " + std::to_string(lba) + " to " + std::to_string(lba + sectors - 1) +
                                 " does not begin and end where sectors of the disk do: those at its ends were read, "
                                 "changed in part and written back.\r\n"));
    write_image("a.img", kSectors);
  }
}

TEST_F(WholeSectors, ALongWriteReadsItsTwoEndsAlone) {
  const std::string unreadable = "fail read 8 34984\n";  // all between the two ends
  EXPECT_EQ(write(3, 34997, unreadable), 0U) << out();
  EXPECT_TRUE(image() == with_pattern(3, 34997));
  const std::int64_t of_files = 2;  // the disk file
  EXPECT_EQ(reads_made(), 2 + of_files);
}

TEST_F(WholeSectors, WhereAnEndCannotBeReadNothingIsWrittenThere) {
  EXPECT_NE(write(3, 2, "fail read 6 1\n"), 0U);
  EXPECT_TRUE(image() == pristine_);
  EXPECT_THAT(out(), HasSubstr("Error Writing Sector 3 for 2 sectors.\r\nERROR: 23 - "));
}

TEST_F(WholeSectors, AWholeDiskIsWipedWithoutAnError) {
  EXPECT_EQ(write(0, kSectors), 0U);
  EXPECT_TRUE(image() == with_pattern(0, kSectors));
  EXPECT_THAT(out(), Not(HasSubstr("does not begin and end")));
}

TEST_F(WholeSectors, TheQuestionSaysWhatIsWrittenBackAroundTheRange) {
  open(switches());
  const auto question = [](const char* first, const char* count) {
    headless::desktop.boxes.clear();
    headless::desktop.answers = {"CANCEL"};
    range(first, count);
    click(CmdWrite_Click);
    return headless::desktop.boxes.at(0).text;
  };
  EXPECT_THAT(question("3", "20"),
              HasSubstr("LBA 3 to 22, 20 sectors\r\nThe drive's sectors of 4096 bytes at LBA 0 and "
                        "16 are read, changed in part and written back."));
  EXPECT_THAT(question("3", "13"), HasSubstr("The drive's sector of 4096 bytes at LBA 0 is read, "));
  EXPECT_THAT(question("8", "9"), HasSubstr("The drive's sector of 4096 bytes at LBA 16 is read, "));
  EXPECT_THAT(question("3", "2"), HasSubstr("The drive's sector of 4096 bytes at LBA 0 is read, "));
  EXPECT_THAT(question("8", "16"), testing::EndsWith("LBA 8 to 23, 16 sectors"));
}

TEST_F(WholeSectors, OneSectorIsShownAndAReadOfAllHoldsEverySector) {
  EXPECT_EQ(start(switches() + "/D:0 /OP:SHOW /START:1001"), 0U);
  EXPECT_EQ(count_of(out(), "[Sector "), 1);
  EXPECT_THAT(out(), HasSubstr("[Sector 1001]"));
  EXPECT_THAT(out(), HasSubstr("0000 31 30 30 31 20 31 30 30 - 31 "));
  EXPECT_EQ(start(switches() + "/D:0 /OP:READ /START:5 /COUNT:30001"), 0U);
  EXPECT_EQ(counters.Sectors_Done, 30001);
  const auto shown = disk.Sec_Buf.bytes().first(static_cast<std::size_t>(disk.Buf_Secs * 512));
  EXPECT_EQ(std::string(shown.begin(), shown.end()), pristine_.substr(disk.Buf_LBA * 512, disk.Buf_Secs * 512));
}

TEST_F(WholeSectors, ASearchFindsAMatchAtEveryByteOfABorder) {
  for (const std::int64_t from : {0, 3}) {
    for (std::int64_t back = 0; back <= 9; ++back) {
      std::string contents(kSectors * 512, '\0');
      const std::int64_t at = 20480 * 512 - back;
      contents.replace(at, 9, "Needle!#9");
      write_file("a.img", contents);
      headless::desktop = {};
      EXPECT_EQ(start(switches() + "/D:0 /OP:SEARCH /FIND:TnEEDLE!#9 /START:" + std::to_string(from)), 0U);
      EXPECT_THAT(out(), HasSubstr("SET QV_D_FOUND_LBA=" + std::to_string(at / 512) +
                                   "\r\nSET QV_D_FOUND_OFFSET=" + std::to_string(at % 512) + "\r\n"));
    }
  }
}

TEST_F(WholeSectors, AnUnreadableChunkIsNoBorder) {
  std::string contents(60000 * 512, '\0');
  contents.replace(20480 * 512 - 1, 1, "N");
  contents.replace(40960 * 512, 1, "M");
  write_file("a.img", contents);
  EXPECT_EQ(start(switches("fail read 30000 1\n") + "/D:0 /OP:SEARCH /FIND:tNM"), 0U);
  EXPECT_THAT(out(), HasSubstr("SET QV_D_FOUND_LBA=\r\n"));
}

TEST_F(WholeSectors, TheSizesAreSaidWhereTheyAreOther) {
  const std::string disks =
      switches() + disk_switch(1, "sectors 40000\nphysical 4096\n") + disk_switch(2, "sectors 8\n");
  EXPECT_EQ(start("/LIST " + disks), 0U);
  const auto listed = lines_with(out(), "\t");
  EXPECT_THAT(listed.at(0), testing::EndsWith("\tSATA\tsectors 4096/4096 bytes"));
  EXPECT_THAT(listed.at(1), testing::EndsWith("\tsectors 512/4096 bytes"));
  EXPECT_THAT(listed.at(2), testing::EndsWith("\tSATA"));

  headless::desktop = {};
  EXPECT_EQ(start(disks + "/D:0 /OP:READ /START:1 /COUNT:7 /JSON:" + path("r.json")), 0U);
  EXPECT_THAT(out(), HasSubstr("\r\nSECTORS\r\n=======\r\nLogical sector 4096 bytes, physical sector 4096 bytes.\r\n"
                               "LBAs and counts are in sectors of 512 bytes: a sector of this disk is 8 of them.\r\n"
                               "LBA 1 to 7 does not begin and end where sectors of the disk do: those at its ends were "
                               "read whole.\r\n"));
  const auto json = nlohmann::json::parse(read_file(path("r.json")));
  EXPECT_EQ(json["disk"]["sectors"], kSectors);
  EXPECT_EQ(json["disk"]["logical_sector_bytes"], 4096);
  EXPECT_EQ(json["disk"]["physical_sector_bytes"], 4096);
  EXPECT_THAT(out(), HasSubstr("SET QV_D_SECTORS=40000\r\n"));

  headless::desktop = {};
  EXPECT_EQ(start(disks + "/D:1 /OP:READ /START:1 /COUNT:7"), 0U);
  EXPECT_THAT(out(), HasSubstr("Logical sector 512 bytes, physical sector 4096 bytes.\r\n"
                               "LBA 1 to 7 is not aligned to the physical sectors.\r\n"));
  headless::desktop = {};
  EXPECT_EQ(start(disks + "/D:1 /OP:READ /START:8 /COUNT:8"), 0U);
  EXPECT_THAT(out(), Not(HasSubstr("not aligned")));

  open(disks);
  EXPECT_EQ(form1.TxtStatus.text(), "Drive 0  - Virtual disk  19Mb (sectors of 4096 bytes: each is 8 sectors of 512)");
  click(Option2_Click);
  EXPECT_EQ(form1.TxtStatus.text(), "Drive 1  - Virtual disk  19Mb") << "its physical sectors are in the block";
  click(Option3_Click);
  EXPECT_EQ(form1.TxtStatus.text(), "Drive 2  - Virtual disk  0Mb");
}

TEST_F(WholeSectors, ADestructiveTestWithPlacesOfPartsKeepsWhatIsAround) {
  open(switches());
  form1.TxtPattern.set_text("A5");
  headless::desktop.answers = {"OK", "50", "3"};
  click(Cmd_Destructive_Random_Write);
  EXPECT_EQ(counters.TotalCErrors + counters.TotalErrors, 0);
  EXPECT_EQ(counters.Sectors_Done, 300);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Each place of 3 sectors ends inside a sector of the disk"));
  const std::string after = image();
  int changed = 0;
  for (std::int64_t lba = 0; lba < kSectors; ++lba) {
    const bool same = after.compare(lba * 512, 512, pristine_, lba * 512, 512) == 0;
    if (!same) ++changed;
    EXPECT_TRUE(same || lba % 8 < 3) << lba;
  }
  EXPECT_GT(changed, 140);
}

TEST_F(WholeSectors, TheMasterBootRecordCountsInThemAndTheViewDoesNot) {
  std::string record(512, '\0');
  record[450] = '\xEE';
  record[454] = 1;
  record.replace(458, 4, std::string("\x87\x13\0\0", 4));  // 4999
  std::string contents(kSectors * 512, '\0');
  contents.replace(0, 512, record);
  contents.replace(4096, 8, "EFI PART");
  write_file("a.img", contents);
  EXPECT_EQ(start(switches() + "/D:0 /OP:SHOW"), 0U);
  EXPECT_THAT(out(), HasSubstr("START (LBA) = 8 (8)   SIZE (LBA) = 39992 (9C38)"));
  EXPECT_EQ(start(switches() + "/D:0 /OP:SHOW /START:8"), 0U);
  EXPECT_THAT(out(), HasSubstr("EFI PART"));
}

}  // namespace
