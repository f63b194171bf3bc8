#include "places/layout.h"

#include <gtest/gtest.h>

#include "tests/support/image_reader.h"

namespace {

struct LayoutTest : testing::Test {
  DiskImage image{400};

  std::string of(std::int64_t first, std::int64_t end) {
    return partitions_of(read_layout(reader_of(image)), first, end);
  }
};

TEST_F(LayoutTest, NamesThePartitionsOfAClassicTable) {
  image.mbr_entry(0, 1, 0x07, 10, 50);
  image.mbr_entry(0, 2, 0x05, 100, 200);
  image.mbr_entry(100, 1, 0x83, 10, 20);
  EXPECT_EQ(of(10, 11), "partition 1, NTFS or exFAT");
  EXPECT_EQ(of(59, 61), "partition 1, NTFS or exFAT; unpartitioned");
  EXPECT_EQ(of(5, 8), "unpartitioned");
  EXPECT_EQ(of(110, 130), "partition 5, Linux filesystem");
  EXPECT_EQ(of(129, 131), "partition 5, Linux filesystem; partition 2, extended");
}

TEST_F(LayoutTest, NamesThePartitionsOfAGuidTable) {
  image.gpt(
      {{kBasicData, 40, 49, "One"}, {kLinuxData, 50, 59, ""}, {kLinuxData, 60, 69, ""}, {kLinuxData, 70, 79, ""}});
  EXPECT_EQ(of(49, 51), "partition 1, Microsoft basic data \"One\"; partition 2, Linux filesystem");
  EXPECT_EQ(of(45, 200),
            "partition 1, Microsoft basic data \"One\"; partition 2, Linux filesystem; partition 3, Linux "
            "filesystem; 2 more");
  image.at(1)[0] = image.at(399)[0] = 0;
  EXPECT_EQ(of(40, 41), "partition 1, GPT protective") << "what was left of the tables";
}

TEST_F(LayoutTest, TakesABootSectorForNoTable) {
  image.mbr_entry(0, 1, 0x07, 10, 50);
  image.fat16(0, 400);
  EXPECT_EQ(of(10, 11), "unpartitioned");
}

}  // namespace
