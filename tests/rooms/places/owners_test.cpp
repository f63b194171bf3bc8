#include "places/owners.h"

#include <gmock/gmock.h>

#include "disk/drive.h"
#include "tests/support/rig.h"
#include "tests/support/tables.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;

/// Drive 0 with an NTFS volume E: from sector 64, 800 long, its clusters 8 sectors; a FAT16 volume F: from 864.
struct OwnersTest : Rig {
  DiskImage image{6000};

  OwnersTest() {
    image.mbr_entry(0, 1, 0x07, 64, 800);
    image.mbr_entry(0, 2, 0x06, 864, 5000);
    image.ntfs(64, 799);
    image.fat16(864, 5000);
  }

  void attach_volumes(const std::string& lines) {
    write_file("disk.img", image.text());
    attach(0, "image disk.img\nvolume E:\nvolume F:\n" + lines);
  }

  static BadRange named(std::int64_t first, std::int64_t sectors, BadKind kind = BadKind::unreadable) {
    std::vector<BadRange> ranges{{.first_lba = first, .sectors = sectors, .kind = kind}};
    name_owners(0, &ranges);
    EXPECT_EQ(virtualdisk::open_handles(), 0);
    return ranges[0];
  }
};

TEST_F(OwnersTest, NamePartitionVolumeFileAndCluster) {
  attach_volumes("file E: 144 16 \\photos\\2019\\img_0042.jpg\nfile E: 104 1 note.txt\nmetadata E: 64 8 $Boot");
  EXPECT_EQ(named(150, 2).partition, "partition 1, NTFS or exFAT");
  EXPECT_EQ(named(150, 2).owner, "E:, file \\photos\\2019\\img_0042.jpg (cluster 10)");
  EXPECT_EQ(named(111, 1).owner, "E:, file \\note.txt (cluster 5)") << "the whole cluster is the file's";
  EXPECT_EQ(named(200, 8).owner, "E:, free space (cluster 17)");
  EXPECT_EQ(named(64, 1).owner, "E:, file system's own area ($Boot) (cluster 0)");
  EXPECT_EQ(named(863, 1).owner, "E:, file system's own area (backup boot sector)");
  EXPECT_EQ(named(5900, 1).owner, "no volume of Windows");
  EXPECT_EQ(named(5900, 1).partition, "unpartitioned");
}

TEST_F(OwnersTest, OfALongRangeNameThreeFilesAndCountTheRest) {
  attach_volumes(
      "file E: 72 8 a\nfile E: 80 8 b\nfile E: 88 8 c\nfile E: 96 8 d\nfile E: 104 8 e\nfile E: 112 8 a\n"
      "metadata E: 120 8 $MFT\nfile E: 200 600 \\big");
  EXPECT_EQ(named(72, 64).owner,
            "E:, file \\a, file \\b, file \\c and 2 files more, file system's own area ($MFT), free space (clusters 1 "
            "to 8)");
  EXPECT_EQ(named(200, 600).owner, "E:, file \\big, 11 clusters more not looked at (clusters 17 to 91)");
}

TEST_F(OwnersTest, OverTwoVolumesNameBoth) {
  attach_volumes("file E: 848 8 last");
  const BadRange range = named(848, 20);
  EXPECT_EQ(range.partition, "partition 1, NTFS or exFAT; partition 2, FAT16");
  EXPECT_THAT(range.owner, StartsWith("E:, file \\last, "));
  EXPECT_THAT(range.owner, EndsWith("; F:, file system's own area (boot sector)"));
}

TEST_F(OwnersTest, OfACoarseRangeNameTheVolumeAlone) {
  attach_volumes("file E: 72 8 a");
  EXPECT_EQ(named(72, 8, BadKind::failed_transfer).owner, "E:");
  EXPECT_EQ(named(72, 8, BadKind::stalled_transfer).partition, "partition 1, NTFS or exFAT");
}

TEST_F(OwnersTest, SayWhyTheyCannotBeLearned) {
  attach_volumes("file F: 1000 8 a");
  EXPECT_THAT(named(1000, 2).owner, StartsWith("F:, owner cannot be learned: error 1 - "));
  EXPECT_THAT(named(1000, 2).owner, EndsWith("(cluster 20)")) << "FAT counts from 2";
  EXPECT_EQ(named(1020, 2).owner, "F:, free space (cluster 30)");
  EXPECT_EQ(named(870, 1).owner, "F:, file system's own area (file allocation table)");
  image.at(64)[510] = 0;
  attach_volumes("");
  EXPECT_EQ(named(100, 1).owner, "E:, owner cannot be learned: the volume does not begin with NTFS, FAT or exFAT");
}

TEST_F(OwnersTest, SayThatAVolumeCouldNotBeAsked) {
  write_file("disk.img", image.text());
  attach(0, "image disk.img\nvolume E: busy");
  EXPECT_THAT(named(100, 1).owner, StartsWith("no volume of Windows that could be asked; E: error 32 - "));
}

TEST_F(OwnersTest, AreLookedForInTheFirstThousandRanges) {
  attach_volumes("file E: 72 8 a");
  std::vector<BadRange> ranges(1001, {.first_lba = 72, .sectors = 1});
  name_owners(0, &ranges);
  EXPECT_EQ(ranges[999].owner, "E:, file \\a (cluster 1)");
  EXPECT_EQ(ranges[1000].owner, "");
  EXPECT_EQ(ranges[1000].partition, "");
}

TEST_F(OwnersTest, OutliveEveryCallThatFails) {
  attach_volumes("file E: 72 8 a");
  headless::desktop.calls_made = 0;
  named(72, 1);
  const std::int64_t calls = headless::desktop.calls_made;
  ASSERT_GT(calls, 10);
  for (std::int64_t failing = 1; failing <= calls; ++failing) {
    headless::desktop.calls_made = 0;
    headless::desktop.fail_first = headless::desktop.fail_last = failing;
    const BadRange range = named(72, 1);
    EXPECT_FALSE(range.owner.empty() || range.partition.empty()) << failing;
  }
}

}  // namespace
