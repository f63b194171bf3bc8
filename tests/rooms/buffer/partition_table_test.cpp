#include "buffer/partition_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct PartitionTableTest : testing::Test {
  std::vector<std::uint8_t> sector = std::vector<std::uint8_t>(512);

  void entry(std::size_t number, std::initializer_list<std::uint8_t> bytes) {
    std::copy(bytes.begin(), bytes.end(), sector.begin() + static_cast<std::ptrdiff_t>(430 + 16 * number));
  }
};

TEST_F(PartitionTableTest, DescribesAnEntry) {
  entry(1, {0x80, 0x20, 0x21, 0x00, 0x07, 0xFE, 0xFF, 0xFF, 0x00, 0x08, 0, 0, 0x00, 0x20, 0x03, 0});
  EXPECT_THAT(partition_table_text(sector),
              StartsWith("\r\n\r\nPartition 1 (SIZE=0.098GB)  Type: 7 NTFS ACTIVE\r\n"
                         "START POS = CYL:0 HD:32 SEC:33  END POS = CYL:1023 HD:254 SEC:63\r\n"
                         "START (LBA) = 2048 (800)   SIZE (LBA) = 204800 (32000)\r\n\r\nPartition 2 "));
}

TEST_F(PartitionTableTest, DecodesTheLargestValuesAndUnnamedTypes) {
  entry(3, {0x7F, 0, 0xFF, 0xFE, 0xEE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
  entry(4, {0, 0, 0, 0, 0x0D});
  const std::string text = partition_table_text(sector);
  EXPECT_THAT(text, HasSubstr("Partition 3 (SIZE=2048.000GB)  Type: EE        \r\nSTART POS = CYL:1022 HD:0 SEC:63 "));
  EXPECT_THAT(text, HasSubstr("START (LBA) = 4294967295 (FFFFFFFF)   SIZE (LBA) = 4294967295 (FFFFFFFF)"));
  EXPECT_THAT(text, EndsWith("Partition 4 (SIZE=0.000GB)  Type: D unknown       \r\n"
                             "START POS = CYL:0 HD:0 SEC:0  END POS = CYL:0 HD:0 SEC:0\r\n"
                             "START (LBA) = 0 (0)   SIZE (LBA) = 0 (0)"));
}

TEST_F(PartitionTableTest, LeavesOutWhatTheBufferDoesNotHold) {
  sector.resize(477);
  sector.shrink_to_fit();
  const std::string text = partition_table_text(sector);
  EXPECT_THAT(text, HasSubstr("Partition 1 "));
  EXPECT_THAT(text, testing::Not(HasSubstr("Partition 2 ")));
  EXPECT_EQ(partition_table_text({}), "");
}

}  // namespace
