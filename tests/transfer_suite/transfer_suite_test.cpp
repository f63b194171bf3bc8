// One suite for virtual disks and for the system's own drives: what the transfers promise holds for both.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>

#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "tests/transfer_suite/drive.h"

namespace {

/// The parameter: bytes of a logical sector. The system's own drive takes transfers of 4096 bytes as well.
class TransferSuite : public ::testing::TestWithParam<int> {
 protected:
  TransferSuite() {
    form1 = {};
    disk = {};
    counters = {};
    progress = {};
    write_image();
    attach_suite_drive(suite_image(), GetParam());
    OpenDrive(kSuiteDrive);
    disk.sizes = {.logical = GetParam(), .physical = GetParam()};
    disk.Sec_Buf.resize(100 * SectorSize);
    counters.No_Secs = 100;
  }
  ~TransferSuite() override {
    close_drive();
    detach_suite_drive();
  }

  static void write_image() {
    // In place, since a drive may hold the file open.
    std::fstream image(suite_image(), std::ios::binary | std::ios::in | std::ios::out);
    if (!image) image.open(suite_image(), std::ios::binary | std::ios::out);
    for (std::int64_t lba = 0; lba < kSuiteSectors; ++lba) {
      const std::string sector = sector_of(lba);
      image.write(sector.data(), SectorSize);
    }
    ASSERT_TRUE(image.good());
  }

  static std::string sector_of(std::int64_t lba) {
    std::string sector = "LBA " + std::to_string(lba);
    sector.resize(SectorSize, '.');
    return sector;
  }

  static std::string buffer_sector(std::int64_t index) {
    const auto bytes = disk.Sec_Buf.bytes().subspan(static_cast<std::size_t>(index * SectorSize), SectorSize);
    return {bytes.begin(), bytes.end()};
  }

  static std::string image_sector(std::int64_t lba) {
    std::string sector(SectorSize, '\0');
    std::ifstream image(suite_image(), std::ios::binary);
    image.seekg(lba * SectorSize);
    image.read(sector.data(), SectorSize);
    return sector;
  }
};

TEST_P(TransferSuite, ReadsTheSectorsAskedFor) {
  ASSERT_NE(disk.hDrive, kernel32::kInvalidHandle);
  ASSERT_TRUE(ReadAt(1234, 2));
  EXPECT_EQ(buffer_sector(0), sector_of(1234));
  EXPECT_EQ(buffer_sector(1), sector_of(1235));
  EXPECT_EQ(disk.Buf_LBA, 1234);
  EXPECT_EQ(disk.Buf_Secs, 2);
  EXPECT_EQ(disk.Errno, 0U);
}

TEST_P(TransferSuite, TheLastSectorCanBeReadAndTheNextCannot) {
  EXPECT_TRUE(ReadAt(kSuiteSectors - 1, 1));
  EXPECT_EQ(buffer_sector(0), sector_of(kSuiteSectors - 1));
  for (const std::int64_t lba : {std::int64_t{kSuiteSectors}, std::int64_t{kSuiteSectors - 1}}) {
    EXPECT_FALSE(ReadAt(lba, 2)) << lba;
    EXPECT_EQ(disk.Buf_Secs, 0);
    EXPECT_TRUE(disk.Errno == 27 || disk.Errno == 38) << disk.Errno;
  }
}

TEST_P(TransferSuite, AWriteLandsOnItsSectorsAlone) {
  std::memset(disk.Sec_Buf.data(), 'W', static_cast<std::size_t>(disk.Sec_Buf.size()));
  ASSERT_TRUE(WriteAt(50, 3));
  EXPECT_EQ(disk.Buf_Secs, 3);
  EXPECT_EQ(image_sector(49), sector_of(49));
  for (const std::int64_t lba : {50, 51, 52}) EXPECT_EQ(image_sector(lba), std::string(SectorSize, 'W'));
  EXPECT_EQ(image_sector(53), sector_of(53));
  ASSERT_TRUE(ReadAt(50, 1));
  EXPECT_EQ(buffer_sector(0), std::string(SectorSize, 'W'));
}

TEST_P(TransferSuite, TheReadLoopAdvancesThroughWholeTransfers) {
  std::int64_t lba = 1000;
  EXPECT_TRUE(Read_sectors(&lba, 250, 100));
  EXPECT_EQ(lba, 1200);
  EXPECT_EQ(counters.Sectors_Done, 200);
  EXPECT_EQ(buffer_sector(0), sector_of(1100));
  EXPECT_EQ(form1.TxtCurrent.text(), "1100");
}

TEST_P(TransferSuite, TheWriteLoopWritesTheBuffersStartEachTime) {
  std::memset(disk.Sec_Buf.data(), 'L', static_cast<std::size_t>(disk.Sec_Buf.size()));
  std::int64_t lba = 4000;
  EXPECT_TRUE(Write_sectors(&lba, 96, 32));
  EXPECT_EQ(lba, 4096);
  EXPECT_EQ(image_sector(3999), sector_of(3999));
  EXPECT_EQ(image_sector(4000), std::string(SectorSize, 'L'));
  EXPECT_EQ(image_sector(4095), std::string(SectorSize, 'L'));
}

TEST_P(TransferSuite, AReadPastTheEndIsReportedWithItsLbaAndTheLoopGoesOn) {
  std::int64_t lba = kSuiteSectors - 10;
  EXPECT_FALSE(Read_sectors(&lba, 30, 10));
  EXPECT_EQ(counters.TotalRErrors, 2);
  EXPECT_EQ(counters.Sectors_Done, 30);
  EXPECT_NE(form1.Text1.text().find("Error Reading Sector 4096 for 10 sectors.\r\nERROR: "), std::string::npos);
  EXPECT_NE(form1.Text1.text().find("Error Reading Sector 4106 for 10 sectors.\r\nERROR: "), std::string::npos);
}

TEST_P(TransferSuite, ADriveThatIsNotThereFailsEveryTransfer) {
  OpenDrive(7);
  EXPECT_EQ(disk.hDrive, kernel32::kInvalidHandle);
  EXPECT_FALSE(ReadAt(0, 1));
  EXPECT_EQ(disk.Errno, 6U);
}

INSTANTIATE_TEST_SUITE_P(SectorBytes, TransferSuite, ::testing::Values(512, 4096), ::testing::PrintToStringParamName());

}  // namespace
