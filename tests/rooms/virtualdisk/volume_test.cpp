#include <gmock/gmock.h>

#include "platform/bytes.h"
#include "tests/rooms/virtualdisk/bench.h"
#include "tests/support/tables.h"

namespace virtualdisk {
namespace {

constexpr std::uint32_t kExtents = 0x560000;
constexpr std::uint32_t kBitmap = 0x9006F;
constexpr std::uint32_t kLookup = 0x901FC;

struct VolumeTest : BenchTest {
  DiskImage image{2000};

  void disk_of_image(const std::string& lines) {
    make_file("disk.img", image.text());
    disk("image disk.img\n" + lines, 3);
  }

  /// The first sector and the number of sectors of a volume's extent, by the number of its disk.
  std::vector<std::uint64_t> extent(const std::string& volume) {
    EXPECT_EQ(open_as(R"(\\.\)" + volume, 0), 0U);
    if (ask(kExtents, {}, 800) != Outcome{0, 32}) return {};
    return {bytes::le32(reply_, 0), bytes::le32(reply_, 8), bytes::le64(reply_, 16) / 512,
            bytes::le64(reply_, 24) / 512};
  }

  Bytes clusters(const std::vector<std::uint64_t>& numbers) {
    Bytes request(8 + 8 * numbers.size());
    bytes::put_le(request, 4, 4, numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) bytes::put_le(request, 8 + 8 * i, 8, numbers[i]);
    return request;
  }
};

TEST_F(VolumeTest, LiesOnThePartitionInTheOrderListed) {
  image.mbr_entry(0, 1, 0x0F, 500, 1000);
  image.mbr_entry(0, 3, 0x07, 64, 100);
  image.mbr_entry(500, 1, 0x83, 10, 20);
  image.mbr_entry(500, 2, 0x05, 300, 40);
  image.mbr_entry(800, 1, 0x83, 5, 30);
  disk_of_image("volume F:\nvolume E:\nvolume G:\nvolume H:");
  EXPECT_THAT(extent("F:"), testing::ElementsAre(1, 3, 64, 100));
  EXPECT_THAT(extent("E:"), testing::ElementsAre(1, 3, 510, 20));
  EXPECT_THAT(extent("G:"), testing::ElementsAre(1, 3, 805, 30));
  EXPECT_EQ(open_as(R"(\\.\H:)"), 0U);
  EXPECT_EQ(ask(kExtents, {}, 32).code, 1U) << "no partition is left for it";
}

TEST_F(VolumeTest, LiesOnThePartitionOfAGuidTable) {
  image.gpt({{kBasicData, 40, 59, "One"}, {kLinuxData, 60, 99, "Two"}});
  disk_of_image("volume E:\nvolume F:");
  EXPECT_THAT(extent("F:"), testing::ElementsAre(1, 3, 60, 40));
  EXPECT_EQ(ask(kExtents, {}, 31).code, 122U);
}

TEST_F(VolumeTest, CanBeReadFromItsFirstSectorToItsLast) {
  image.mbr_entry(0, 1, 0x07, 64, 100);
  image.at(64)[0] = 1;
  image.at(163)[0] = 2;
  disk_of_image("volume E:\nfail read 100 1");
  ASSERT_EQ(open_as(R"(\\.\E:)"), 0U);
  EXPECT_THAT(first_bytes(0, 1), testing::ElementsAre(1));
  EXPECT_THAT(first_bytes(99, 1), testing::ElementsAre(2));
  EXPECT_EQ(read_at(36, 1).code, 23U);
  EXPECT_EQ(read_at(100, 1).code, 27U);
  EXPECT_EQ(write_at(0, 1, 7).code, 1U);
}

TEST_F(VolumeTest, TellsWhichClustersItsFilesTouch) {
  image.mbr_entry(0, 1, 0x07, 64, 800);
  image.ntfs(64, 799);
  disk_of_image("volume E:\nfile E: 71 2 \\a\nmetadata E: 144 8 $B");
  ASSERT_EQ(open_as(R"(\\.\E:)", platform::kGenericRead), 0U);
  ASSERT_EQ(ask(kBitmap, Bytes(8), 64), (Outcome{0, 29}));
  EXPECT_EQ(bytes::le64(reply_, 8), 100U);
  EXPECT_EQ(reply_[16], 0x03);
  EXPECT_EQ(reply_[17], 0x04);
  EXPECT_EQ(ask(kBitmap, {15, 0, 0, 0, 0, 0, 0, 0}, 17), (Outcome{234, 17}));
  EXPECT_EQ(bytes::le64(reply_, 0), 8U) << "rounded down";
  EXPECT_EQ(reply_[16], 0x04);
  EXPECT_EQ(ask(kBitmap, {100, 0, 0, 0, 0, 0, 0, 0}, 64).code, 87U);
  ASSERT_EQ(open_as(R"(\\.\E:)", 0), 0U);
  EXPECT_EQ(ask(kBitmap, Bytes(8), 64).code, 1U) << "the request does not reach the file system";
}

TEST_F(VolumeTest, NamesTheFileOfACluster) {
  image.mbr_entry(0, 1, 0x07, 64, 800);
  image.ntfs(64, 799);
  disk_of_image("volume E:\nfile E: 71 2 \\a b\nmetadata E: 144 8 $B");
  ASSERT_EQ(open_as(R"(\\.\E:)"), 0U);
  ASSERT_EQ(ask(kLookup, clusters({1, 5, 10}), 512).code, 0U);
  EXPECT_EQ(bytes::le32(reply_, 4), 2U);
  const std::size_t first = bytes::le32(reply_, 0);
  const std::size_t second = first + bytes::le32(reply_, first);
  EXPECT_EQ(bytes::le64(reply_, first + 16), 1U);
  EXPECT_EQ(std::string(1, static_cast<char>(reply_[first + 26])), "a");
  EXPECT_EQ(bytes::le32(reply_, second + 4), 0x01000004U);
  EXPECT_EQ(bytes::le64(reply_, second + 16), 10U);
  EXPECT_EQ(bytes::le32(reply_, second), 0U);
  const std::uint32_t needed = bytes::le32(reply_, 8);
  EXPECT_EQ(ask(kLookup, clusters({1, 10}), 20), (Outcome{0, 16})) << "counted, though there is no room";
  EXPECT_EQ(bytes::le32(reply_, 8), needed);
  EXPECT_EQ(ask(kLookup, {0, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}, 512).code, 87U);
  image.fat16(64, 800);
  disk_of_image("volume E:");
  ASSERT_EQ(open_as(R"(\\.\E:)"), 0U);
  EXPECT_EQ(ask(kLookup, clusters({1}), 512).code, 1U) << "NTFS alone answers";
}

}  // namespace
}  // namespace virtualdisk
