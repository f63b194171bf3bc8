#include "places/gpt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/image_reader.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct GptTest : testing::Test {
  DiskImage image{200};

  GptTest() { image.gpt({{kBasicData, 40, 59, "Data"}, {kLinuxData, 60, 99, "root"}}); }

  GptTable table() { return read_gpt(reader_of(image)); }
};

TEST_F(GptTest, GivesWhatBothHeadersSay) {
  const GptTable found = table();
  EXPECT_THAT(found.damages, IsEmpty());
  EXPECT_EQ(found.backup_lba, 199);
  ASSERT_EQ(found.partitions.size(), 2U);
  EXPECT_EQ(found.partitions[0].type, "Microsoft basic data");
  EXPECT_EQ(found.partitions[0].name, "Data");
  EXPECT_EQ(found.partitions[1].number, 2);
  EXPECT_EQ(found.partitions[1].first_lba, 60);
  EXPECT_EQ(found.partitions[1].end_lba(), 100);
  EXPECT_EQ(guid_text(found.header->disk), "000000D1-0000-0000-0000-000000000000");
}

TEST_F(GptTest, CountsSectorsOf512BytesWhereTheDiskCountsLongerOnes) {
  image = DiskImage(100, 4096);
  image.gpt({{kBasicData, 10, 19, ""}});
  const GptTable found = table();
  EXPECT_THAT(found.damages, IsEmpty());
  EXPECT_EQ(found.header_lba, 8);
  EXPECT_EQ(found.backup_lba, 99 * 8);
  EXPECT_EQ(found.header->last_usable, (100 - 5) * 8 - 1);
  EXPECT_EQ(found.partitions.at(0).first_lba, 80);
  EXPECT_EQ(found.partitions.at(0).sectors, 80);
}

TEST_F(GptTest, TakesTheBackupWhereTheFirstHeaderIsDamaged) {
  image.at(1)[41] ^= 1;
  EXPECT_THAT(table().damages, ElementsAre(HasSubstr("The GPT header at LBA 1 has a bad checksum: ")));
  EXPECT_EQ(table().header_lba, 199);
  EXPECT_EQ(table().partitions.size(), 2U);
  image.at(1)[0] = 'X';
  EXPECT_THAT(table().damages, ElementsAre("The GPT header at LBA 1 is missing: no signature stands there."));
  EXPECT_EQ(table().partitions.size(), 2U);
}

TEST_F(GptTest, TakesTheBackupsEntriesWhereTheFirstOnesAreDamaged) {
  image.at(2)[32] = 41;
  EXPECT_THAT(table().damages, ElementsAre(HasSubstr("The GPT header's entries at LBA 2 have a bad checksum: ")));
  EXPECT_EQ(table().partitions.at(0).first_lba, 40) << "the backup's";
  image.at(199)[0] = 0;
  EXPECT_EQ(table().damages.size(), 2U);
  EXPECT_EQ(table().partitions.at(0).first_lba, 41) << "no better ones are left";
}

TEST_F(GptTest, SaysThatTheBackupIsMissingOrDifferent) {
  image.gpt_header(199, 1, 2);
  image.at(199)[56] = 0xD2;
  image.sum_header(199);
  EXPECT_THAT(table().damages, ElementsAre("The backup at LBA 199 differs from the first table."));
  image.at(199)[3] = 0;
  EXPECT_THAT(table().damages, ElementsAre("The backup header at LBA 199 is missing: no signature stands there."));
  EXPECT_EQ(table().backup_lba, -1);
}

TEST_F(GptTest, FindsTheBackupOfADiskThatHasGrown) {
  image.bytes.resize(300 * 512);
  EXPECT_THAT(table().damages,
              ElementsAre("The backup header is told to lie at LBA 199, not at the disk's end, LBA 299."));
  EXPECT_EQ(table().backup_lba, 199);
}

TEST_F(GptTest, SaysThatAHeaderStandsWhereItDoesNotBelong) {
  std::copy_n(image.at(199).begin(), 512, image.at(1).begin());
  EXPECT_THAT(table().damages, ElementsAre("The GPT header at LBA 1 says that it stands elsewhere."));
}

TEST_F(GptTest, SaysWhichEntriesHaveABadPlace) {
  image.gpt({{kBasicData, 40, 80, ""},
             {kBasicData, 70, 75, ""},
             {kBasicData, 76, 90, ""},
             {kBasicData, 99, 90, ""},
             {kBasicData, 100, 200, ""},
             {kBasicData, 20, 36, ""}});
  EXPECT_THAT(table().damages,
              ElementsAre("GPT entry 4 ends before it begins.", "GPT entry 5 lies beyond the end of the disk.",
                          "GPT entry 6 lies outside the sectors that the header calls usable.",
                          "GPT entries 1 and 2 lie over each other.", "GPT entries 1 and 3 lie over each other."));
}

TEST_F(GptTest, ReadsNoTableOfAnImpossibleSize) {
  bytes::put_le(image.at(1), 80, 4, 0xFFFFFFFF);
  image.sum_header(1);
  EXPECT_THAT(table().damages.at(0), HasSubstr("are not read: 4294967295 of 128 bytes cannot be"));
  bytes::put_le(image.at(1), 72, 8, 0xFFFFFFFFFFFFFFFF);
  bytes::put_le(image.at(1), 80, 4, 128);
  image.sum_header(1);
  EXPECT_THAT(table().damages.at(0), HasSubstr("lie beyond the end of the disk"));
}

TEST_F(GptTest, SaysWhatCannotBeRead) {
  DiskReader disk = reader_of(image);
  disk.read = [](std::int64_t, std::span<std::uint8_t>) { return 23U; };
  EXPECT_THAT(read_gpt(disk).damages, ElementsAre(HasSubstr("The GPT header at LBA 1 cannot be read: error 23 - "),
                                                  HasSubstr("The backup header at LBA 199 cannot be read: error 23")));
  disk = reader_of(image);
  disk.sectors = 0;
  EXPECT_EQ(read_gpt(disk).backup_lba, 199) << "found by the header alone";
}

TEST(GptTypes, AreTheirGuidWithoutAName) {
  std::array<std::uint8_t, 16> guid{};
  for (std::uint8_t i = 0; i < 16; ++i) guid[i] = static_cast<std::uint8_t>(i * 17);
  EXPECT_EQ(gpt_type_name(guid), "33221100-5544-7766-8899-AABBCCDDEEFF");
}

TEST_F(GptTest, OfABufferShowsWhatIsHeldAndSaysWhatToRead) {
  image = DiskImage(200, 4096);
  image.gpt({{kBasicData, 40, 59, "Data"}});
  const auto held = [this](std::size_t sectors) {
    return read_gpt(reader_of_buffer(std::span(image.bytes).first(sectors * 4096), 4096));
  };
  const std::string backup = "The backup header at LBA 1592 was not checked.";
  EXPECT_THAT(held(1).missing,
              ElementsAre("The GUID partition table is not in the buffer. Read LBA 0 to 47 to show the "
                          "whole table here."));
  EXPECT_THAT(held(5).missing, ElementsAre("The GPT entries, LBA 16 to 47, are not all in the buffer. Read LBA 0 to 47 "
                                           "to show the whole table here.",
                                           backup));
  EXPECT_EQ(held(5).partitions.at(0).first_lba, 320);
  EXPECT_THAT(held(6).missing, ElementsAre(backup));
  EXPECT_THAT(held(6).damages, IsEmpty());
  bytes::put_le(image.at(1), 72, 8, 30'000);
  image.sum_header(1);
  EXPECT_THAT(held(6).missing, ElementsAre("The GPT entries, LBA 240000 to 240031, are not all in the buffer.", backup))
      << "a read as long as that leaves only its end in the buffer";
}

}  // namespace
