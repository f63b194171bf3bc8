#include "places/mbr.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/image_reader.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// An extended partition from sector 100, 200 long, with logical ones at 110 and 160.
struct LogicalTest : testing::Test {
  DiskImage image{400};

  LogicalTest() {
    image.mbr_entry(0, 1, 0x07, 10, 50);
    image.mbr_entry(0, 2, 0x0F, 100, 200);
    image.mbr_entry(100, 1, 0x83, 10, 20);
    image.mbr_entry(100, 2, 0x05, 50, 40);
    image.mbr_entry(150, 1, 0x82, 10, 30);
  }

  LogicalTable table() { return read_logical(reader_of(image), decode_mbr(image.at(0))); }
};

TEST_F(LogicalTest, FollowsTheChain) {
  const LogicalTable found = table();
  EXPECT_THAT(found.damages, IsEmpty());
  ASSERT_EQ(found.partitions.size(), 2U);
  EXPECT_EQ(found.partitions[0].number, 5);
  EXPECT_EQ(found.partitions[0].first_lba, 110);
  EXPECT_EQ(found.partitions[1].first_lba, 160)
      << "a link counts from the extended partition, a partition from its table";
  EXPECT_EQ(found.partitions[1].sectors, 30);
  EXPECT_EQ(found.partitions[1].type, "Linux swap");
}

TEST_F(LogicalTest, CountsSectorsOf512BytesWhereTheDiskCountsLongerOnes) {
  image.bytes.resize(400 * 4096);
  image.logical = 4096;
  image.bytes.assign(image.bytes.size(), 0);
  image.mbr_entry(0, 2, 0x85, 100, 200);
  image.mbr_entry(100, 1, 0x83, 10, 20);
  EXPECT_EQ(table().partitions.at(0).first_lba, 880);
  EXPECT_EQ(table().partitions.at(0).sectors, 160);
}

TEST_F(LogicalTest, EndsAChainThatLeadsBack) {
  image.mbr_entry(150, 2, 0x05, 0, 40);
  EXPECT_THAT(table().damages, ElementsAre("The extended partition table at LBA 150 leads back to LBA 100."));
  EXPECT_EQ(table().partitions.size(), 2U);
}

TEST_F(LogicalTest, EndsAChainThatLeavesTheExtendedPartition) {
  image.mbr_entry(100, 2, 0x05, 200, 40);
  EXPECT_THAT(table().damages,
              ElementsAre("The extended partition table at LBA 100 names a next one at LBA 300, outside "
                          "the extended partition."));
  image.mbr_entry(0, 2, 0x0F, 400, 200);
  EXPECT_THAT(table().damages, ElementsAre(HasSubstr("at LBA 400 lies beyond the end of the disk")));
}

TEST_F(LogicalTest, SaysWhatTheChainCannotGive) {
  image.at(150)[510] = 0;
  EXPECT_THAT(table().damages,
              ElementsAre("The extended partition table at LBA 150 has no signature: what follows it is not known."));
  EXPECT_EQ(table().partitions.size(), 1U);
  image.mbr_entry(100, 1, 0x83, 10, 250);
  EXPECT_THAT(table().damages.at(0), "Logical partition 5 lies outside its extended partition.");
  image.mbr_entry(100, 1, 0x83, 10, 300);
  EXPECT_THAT(table().damages.at(0), "Logical partition 5 lies beyond the end of the disk.");
}

TEST_F(LogicalTest, BoundsAChainOfTablesWithoutEnd) {
  image = DiskImage(1000);
  image.mbr_entry(0, 1, 0x05, 100, 900);
  for (std::uint32_t i = 0; i < 899; ++i) image.mbr_entry(100 + i, 2, 0x05, i + 1, 1);
  EXPECT_THAT(table().damages, ElementsAre("More than 256 extended partition tables follow each other."));
}

}  // namespace
