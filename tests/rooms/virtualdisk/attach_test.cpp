#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/rooms/virtualdisk/bench.h"
#include "virtualdisk/content.h"

namespace virtualdisk {
namespace {

using testing::ElementsAre;

class AttachTest : public BenchTest {
 protected:
  static std::string error_of(const std::string& lines) {
    const std::string file = make_file("bad.vd", lines);
    const std::string error = attach(2, file);
    EXPECT_FALSE(attached(2));
    EXPECT_TRUE(error.starts_with(file)) << error;
    return error.starts_with(file) ? error.substr(file.size()) : error;
  }
};

TEST_F(AttachTest, SaysWhatIsWrongWithTheFilesNamed) {
  make_file("three.img", std::string(1536, 'x'));
  make_file("short.page", "x");
  EXPECT_EQ(error_of("model x\nimage nowhere.img"), ":2: nowhere.img cannot be opened (error 2)");
  EXPECT_EQ(error_of("image three.img\nsectors 4"), ":2: sectors must be at most the image's 3: 4");
  EXPECT_EQ(error_of("image short.page"), ":1: short.page holds no whole sector");
  EXPECT_EQ(error_of(R"(image \\.\PhysicalDrive1)"), R"(:1: \\.\PhysicalDrive1 is a device, not a file)");
  EXPECT_EQ(error_of("image nul"), ":1: nul is a device, not a file");
  EXPECT_EQ(attach(0, "CON"), "CON is a device, not a file");
  EXPECT_EQ(error_of("sectors 4\nidentify short.page"), ":2: short.page has fewer than 512 bytes");
  EXPECT_EQ(error_of("sectors 4\nattributes three.img"), ":2: three.img has more than 512 bytes");
  EXPECT_EQ(attach(0, path("none.vd")), path("none.vd") + " cannot be opened (error 2)");
  EXPECT_EQ(attach(0, path("none.dd")), path("none.dd") + " cannot be opened (error 2)");
  EXPECT_EQ(attach(8, "DEMO"), "drive number must be 0 to 7: 8");
  EXPECT_EQ(headless::desktop.open_files, 0);
}

TEST_F(AttachTest, BareImageIsADiskOfItsWholeSectors) {
  ASSERT_EQ(attach(3, make_file("My disk-1.IMG", std::string(1300, 'z'))), "");
  const VirtualDisk& disk = *state.disks[3];
  EXPECT_EQ(disk.sectors, 2);
  EXPECT_EQ(disk.file.model, "Virtual disk");
  EXPECT_EQ(disk.file.serial, "Mydisk1IMG");
  ASSERT_EQ(open_as(R"(\\.\PhysicalDrive3)"), 0U);
  EXPECT_THAT(first_bytes(0, 2), ElementsAre('z', 'z'));
}

TEST_F(AttachTest, ImageThatMayNotBeWrittenMakesAReadOnlyDisk) {
  make_file("whole.img", std::string(512, 'a'));
  const std::string file = make_file("whole.vd", "image whole.img");
  headless::desktop.fail_first = headless::desktop.calls_made + 4;  // the image's opening for writing
  headless::desktop.fail_last = headless::desktop.fail_first;
  ASSERT_EQ(attach(0, file), "");
  ASSERT_EQ(open_as(R"(\\.\PhysicalDrive0)"), 0U);
  EXPECT_EQ(write_at(0, 1, 1).code, 19U);
  EXPECT_EQ(flush(handle_), 0U);
}

TEST_F(AttachTest, NamesBelongToTheDiskOfTheirNumber) {
  disk("sectors 8\nvolume E:\nvolume f: busy", 3);
  EXPECT_EQ(disk_named(R"(\\.\physicaldrive3)"), 3);
  EXPECT_EQ(disk_named(R"(\\?\PhysicalDrive3)"), 3);
  EXPECT_EQ(disk_named(R"(\\.\SCSI3:)"), 3);
  EXPECT_EQ(disk_named(R"(\\.\e:)"), 3);
  for (const char* other : {R"(\\.\PhysicalDrive2)", R"(\\.\PhysicalDrive30)", R"(\\.\PhysicalDrive)", R"(\\.\Scsi2:)",
                            R"(\\.\Scsi3)", R"(\\.\G:)", "PhysicalDrive3", "E:", "C:\\file", ""}) {
    EXPECT_EQ(disk_named(other), -1) << other;
  }
  EXPECT_EQ(open_as(R"(\\.\Scsi3:)"), 2U);
  EXPECT_EQ(open_as(R"(\\.\F:)"), 32U);
  EXPECT_THAT(volumes(3), ElementsAre("E:", "F:"));
  EXPECT_THAT(attach(4, make_file("other.vd", "sectors 8\nvolume e:")),
              testing::EndsWith(":2: volume E: is on drive 3"));
}

TEST_F(AttachTest, HandlesAreItsOwnUntilTheDiskGoes) {
  disk("sectors 8");
  const platform::Handle first = handle_;
  EXPECT_TRUE(owns(first));
  EXPECT_FALSE(owns(4));
  EXPECT_FALSE(owns(platform::kInvalidHandle));
  open_as(R"(\\.\PhysicalDrive0)");
  EXPECT_EQ(open_handles(), 2);
  EXPECT_EQ(close(first), 0U);
  EXPECT_EQ(close(first), 6U);
  EXPECT_EQ(open_handles(), 1);
  detach_all();
  EXPECT_EQ(open_handles(), 0);
  EXPECT_EQ(read_at(0, 1).code, 6U);
  EXPECT_EQ(disk_named(R"(\\.\PhysicalDrive0)"), -1);
}

TEST_F(AttachTest, VolumeHasOneLockUntilItsHandleGoes) {
  constexpr std::uint32_t kLock = 0x90018;
  constexpr std::uint32_t kUnlock = 0x9001C;
  disk("sectors 8\nvolume E:");
  EXPECT_EQ(ask(0x90020, {}, 0).code, 0U) << "the drive itself may be dismounted";
  ASSERT_EQ(open_as(R"(\\.\E:)"), 0U);
  EXPECT_EQ(ask(kUnlock, {}, 0).code, 158U);
  EXPECT_EQ(ask(kLock, {}, 0).code, 0U);
  EXPECT_EQ(ask(kLock, {}, 0).code, 5U);
  EXPECT_EQ(ask(0x90020, {}, 0).code, 0U);
  EXPECT_EQ(read_at(0, 1).code, 1U);
  const platform::Handle holder = handle_;
  EXPECT_EQ(open_as(R"(\\.\E:)"), 5U);
  close(holder);
  EXPECT_EQ(open_as(R"(\\.\E:)"), 0U);
}

class DemoTest : public BenchTest {
 protected:
  void SetUp() override {
    BenchTest::SetUp();
    ASSERT_EQ(attach(0, "demo"), "");
    ASSERT_EQ(open_as(R"(\\.\PhysicalDrive0)"), 0U);
  }
};

TEST_F(DemoTest, WholeReadMeetsTwoSlowTransfersAndOneError) {
  constexpr std::uint32_t kTransfer = 20480;
  int slow = 0;
  int failed = 0;
  for (std::int64_t lba = 0; lba < 2097152; lba += kTransfer) {
    const auto sectors = static_cast<std::uint32_t>(std::min<std::int64_t>(kTransfer, 2097152 - lba));
    const double before = headless::desktop.steady;
    if (read_at(lba, sectors).code != 0) ++failed;
    const double took = headless::desktop.steady - before;
    EXPECT_GT(took, 0.05) << lba;
    if (sectors / 2048.0 / took < 10.0) ++slow;
  }
  EXPECT_EQ(slow, 2);
  EXPECT_EQ(failed, 1);
  EXPECT_NEAR(headless::desktop.steady, 8.0 + 2.4, 0.6);
}

TEST_F(DemoTest, HasAPartitionTableAndTextToFind) {
  ASSERT_EQ(read_at(0, 1).code, 0U);
  EXPECT_THAT(Bytes(buffer_.begin() + 446, buffer_.begin() + 462),
              ElementsAre(0x80, 32, 33, 0, 0x07, 30, 43, 51, 0, 8, 0, 0, 0, 0x80, 0x0C, 0));
  EXPECT_EQ(buffer_[510] << 8 | buffer_[511], 0x55AA);
  ASSERT_EQ(read_at(500000, 1).code, 0U);
  EXPECT_EQ(std::string(buffer_.begin(), buffer_.begin() + 47), "The needle lies in the haystack, sector 500000.");
}

TEST_F(DemoTest, IsTheSampleThatIsShipped) {
  std::ifstream sample(std::filesystem::path(__FILE__).parent_path() / "../../../examples/practice.vd",
                       std::ios::binary);
  EXPECT_EQ(demo_text(), std::string(std::istreambuf_iterator<char>(sample), {}));
}

}  // namespace
}  // namespace virtualdisk
