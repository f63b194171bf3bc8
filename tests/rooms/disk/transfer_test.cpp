#include "disk/transfer.h"

#include <gmock/gmock.h>

#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/error_text.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Transfer : public Rig {
 protected:
  void open_disk(const std::string& disk_file, std::int64_t buffer_sectors = 100) {
    attach(0, disk_file);
    OpenDrive(0);
    disk.Sec_Buf.resize(buffer_sectors * SectorSize);
    counters.No_Secs = buffer_sectors;
  }
};

TEST_F(Transfer, AReadMovesTheSectorsAskedForToTheBuffersStart) {
  write_image("a.img", 300);
  open_disk("image a.img\n");
  ASSERT_TRUE(ReadAt(299, 1));
  EXPECT_EQ(std::string(disk.Sec_Buf.data(), disk.Sec_Buf.data() + 8), "299 299 ");
  EXPECT_EQ(disk.Buf_LBA, 299);
  EXPECT_EQ(disk.Buf_Secs, 1);
}

TEST_F(Transfer, FailuresAreCountedReportedAndPassed) {
  open_disk("sectors 1000\nfail read 200 1 23\nfail write 300 1\n");
  std::int64_t lba = 150;
  EXPECT_FALSE(Read_sectors(&lba, 250, 100));
  EXPECT_EQ(lba, 350) << "a remainder smaller than a transfer is left";
  EXPECT_EQ(form1.Text1.text(),
            "Error Reading Sector 150 for 100 sectors.\r\nERROR: 23 - Data error (cyclic redundancy check)\r\n");
  EXPECT_EQ(counters.TotalErrors, 1);
  EXPECT_EQ(counters.TotalRErrors, 1);
  EXPECT_EQ(counters.Sectors_Done, 200);
  lba = 300;
  EXPECT_FALSE(Write_sectors(&lba, 1, 1));
  EXPECT_EQ(counters.TotalErrors, 2);
  EXPECT_EQ(counters.TotalWErrors, 3) << "the write count ends one above the total";
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Error Writing Sector 300 for 1 sectors.\r\nERROR: 29 - WRITE FAULT\r\n"));
}

TEST_F(Transfer, AShortTransferHasFailed) {
  open_disk("sectors 1000\nshort any 50 1\n");
  EXPECT_FALSE(ReadAt(0, 100));
  EXPECT_EQ(disk.Errno, 38U);
  EXPECT_EQ(disk.Buf_Secs, 0);
  EXPECT_FALSE(WriteAt(0, 100));
  EXPECT_EQ(disk.Errno, 112U);
}

TEST_F(Transfer, WhatCannotBeATransferMakesNoSystemCall) {
  open_disk("sectors 1000\n");
  headless::desktop.calls.clear();
  EXPECT_FALSE(ReadAt(0, 101)) << "larger than the buffer";
  EXPECT_FALSE(ReadAt(-1, 1));
  EXPECT_FALSE(WriteAt(0, -1));
  EXPECT_FALSE(ReadAt(INT64_MAX / 512 + 1, 1));
  EXPECT_EQ(disk.Errno, 13U);
  disk.Sec_Buf.resize(4'194'304 * SectorSize);
  EXPECT_FALSE(ReadAt(0, 4'194'304));
  EXPECT_THAT(headless::desktop.calls, ElementsAre());
  std::int64_t lba = INT64_MAX - 1;
  Read_sectors(&lba, 20, 10);
  EXPECT_EQ(lba, INT64_MAX) << "never wraps";
  EXPECT_EQ(counters.TotalErrors, 2);
}

TEST_F(Transfer, AWriteLocksFlushesAndUnlocksAndAFailedOneDoesNot) {
  open_disk("sectors 1000\nfail write 500 1\n");
  headless::desktop.calls.clear();
  EXPECT_TRUE(WriteAt(7, 2));
  EXPECT_THAT(headless::desktop.calls,
              ElementsAre("SetFilePointerEx", "LockFile", "WriteFile", "FlushFileBuffers", "UnlockFile"));
  headless::desktop.calls.clear();
  EXPECT_FALSE(WriteAt(500, 1));
  EXPECT_THAT(headless::desktop.calls, ElementsAre("SetFilePointerEx", "LockFile", "WriteFile"));
}

TEST_F(Transfer, AWriteLocksItsRangeByTheSplitLength) {
  open_disk("sectors 9000000\n", 128);
  constexpr std::int64_t kBeyond = 8388608 + 7;  // from byte 4294967296 + 3584 on
  for (const std::int64_t sectors : {1, 64, 128}) EXPECT_TRUE(WriteAt(kBeyond, sectors));
  std::vector<std::vector<std::uint32_t>> locked;
  std::vector<std::vector<std::uint32_t>> unlocked;
  for (const headless::Call& call : passed_to("LockFile"))
    locked.emplace_back(call.numbers.begin(), call.numbers.end());
  for (const headless::Call& call : passed_to("UnlockFile"))
    unlocked.emplace_back(call.numbers.begin(), call.numbers.end());
  EXPECT_THAT(locked, ElementsAre(ElementsAre(3584, 1, 512, 0), ElementsAre(3584, 1, 0xFFFF8000, 0),
                                  ElementsAre(3584, 1, 0, 1)));
  EXPECT_EQ(unlocked, locked);
}

TEST_F(Transfer, ADriveIsOpenedForReadingAndWritingAndShared) {
  open_disk("sectors 10\n");
  const headless::Call opened = passed_to("CreateFileA").back();
  EXPECT_EQ(opened.text, R"(\\.\PhysicalDrive0)");
  EXPECT_THAT(opened.numbers, ElementsAre(0xC0000000, 3, 3, 0)) << "access, share mode, disposition, flags";
}

TEST_F(Transfer, AReadOnlyDiskSaysSo) {
  open_disk("sectors 1000\nreadonly\n");
  std::int64_t lba = 0;
  EXPECT_FALSE(Write_sectors(&lba, 10, 10));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("ERROR: 19 - The media is write protected\r\n"));
}

TEST_F(Transfer, CancelStopsBeforeTheNextTransfer) {
  open_disk("sectors 1000\n");
  headless::desktop.at_pump = [](int pump) { form1.MyCancel = pump == 3; };
  std::int64_t lba = 0;
  EXPECT_TRUE(Read_sectors(&lba, 100, 10));
  EXPECT_EQ(lba, 20);
  EXPECT_EQ(counters.Sectors_Done, 20);
}

TEST_F(Transfer, AMissingOrForbiddenDriveLeavesNoHandle) {
  OpenDrive(5);
  EXPECT_EQ(disk.hDrive, -1);
  EXPECT_FALSE(ReadAt(0, 0));
  headless::desktop.fail_code = 5;
  headless::desktop.fail_first = 1;
  headless::desktop.fail_last = 1000;
  OpenDrive(1);
  EXPECT_TRUE(disk.access_denied);
  headless::desktop.fail_code = 2;
  OpenDrive(2);
  EXPECT_FALSE(disk.access_denied);
}

TEST_F(Transfer, ClosesADriveOnce) {
  open_disk("sectors 10\n");
  close_drive();
  headless::desktop.calls.clear();
  close_drive();
  EXPECT_THAT(headless::desktop.calls, ElementsAre());
}

TEST(ErrorText, OwnTextsFirstThenTheSystems) {
  EXPECT_EQ(GetErrMsg(27), "Sector Not Found");
  EXPECT_EQ(GetErrMsg(38), "Reached the end of the file.");
  EXPECT_EQ(GetErrMsg(0xFFFFFFFF), "(No such error)");
  EXPECT_EQ(open_error_text(37), "The specified network resource or device is no longer available.");
  EXPECT_EQ(open_error_text(0), "");
}

}  // namespace
