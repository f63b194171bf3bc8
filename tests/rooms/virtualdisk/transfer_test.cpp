#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rooms/virtualdisk/bench.h"

namespace virtualdisk {
namespace {

using testing::ElementsAre;

class TransferTest : public BenchTest {};

TEST_F(TransferTest, MemoryKeepsWhatIsWrittenAcrossItsPages) {
  disk("sectors 100000");
  EXPECT_EQ(write_at(2046, 4, 0x5A), (Outcome{0, 4}));
  EXPECT_THAT(first_bytes(2045, 6), ElementsAre(0, 0x5A, 0x5A, 0x5A, 0x5A, 0));
  EXPECT_EQ(state.disks[0]->content.pages(), 2U);
}

TEST_F(TransferTest, HugeDiskCostsOnlyWhatIsWritten) {
  for (const std::int64_t sectors : {std::int64_t{1} << 48, std::int64_t{1} << 54}) {
    disk("rate 1000000 1\nslow 0 1 0\nsectors " + std::to_string(sectors));
    EXPECT_EQ(write_at(sectors - 1, 1, 7), (Outcome{0, 1}));
    EXPECT_EQ(write_at(12345, 1, 0), (Outcome{0, 1}));
    EXPECT_THAT(first_bytes(sectors - 2, 2), ElementsAre(0, 7));
    EXPECT_EQ(state.disks[0]->content.pages(), 1U);
  }
}

TEST_F(TransferTest, RefusesWhatIsNotOnTheDiskOrNoWholeSectors) {
  disk("sectors 100");
  EXPECT_EQ(read_at(99, 2), (Outcome{27, 0}));
  EXPECT_EQ(write_at(100, 1, 1), (Outcome{27, 0}));
  EXPECT_EQ(read_at(std::int64_t{1} << 53, 1), (Outcome{27, 0}));
  EXPECT_EQ(read_at(99, 1), (Outcome{0, 1}));
  std::uint32_t moved = 0;
  seek(handle_, 100, nullptr, platform::kFileBegin);
  EXPECT_EQ(read(handle_, buffer_.data(), 512, &moved), 87U);
  seek(handle_, 0, nullptr, platform::kFileBegin);
  EXPECT_EQ(read(handle_, buffer_.data(), 100, &moved), 87U);
}

TEST_F(TransferTest, LongSectorsAreMovedWholeAndARefusalNeverReachesTheDrive) {
  disk("sectors 104\nlogical 4096\nvanish 2\nfail any 0 8\nsmart 5 0 1 1 0 0\ngrow 5 1 on read-error");
  EXPECT_EQ(read_at(8, 1), (Outcome{87, 0}));
  EXPECT_EQ(write_at(0, 4, 1), (Outcome{87, 0}));
  EXPECT_EQ(read_at(4, 8), (Outcome{87, 0}));
  EXPECT_EQ(state.disks[0]->transfers, 0);
  EXPECT_EQ(write_at(8, 8, 7), (Outcome{0, 8}));
  EXPECT_EQ(read_at(0, 8), (Outcome{23, 0}));
  EXPECT_EQ(read_at(8, 8), (Outcome{1167, 0})) << "the two that were made count";
}

TEST_F(TransferTest, HandlesKeepTheirOwnPositionsAndAccess) {
  disk("sectors 100");
  write_at(3, 1, 3);
  std::int64_t position = 0;
  EXPECT_EQ(seek(handle_, -1024, &position, platform::kFileCurrent), 0U);
  EXPECT_EQ(position, 1024);
  EXPECT_EQ(seek(handle_, -1025, &position, platform::kFileCurrent), 131U);
  const platform::Handle first = handle_;
  ASSERT_EQ(open_as(R"(\\.\PhysicalDrive0)", platform::kGenericRead), 0U);
  EXPECT_EQ(write_at(0, 1, 1).code, 5U);
  EXPECT_THAT(first_bytes(3, 1), ElementsAre(3));
  seek(first, 0, &position, platform::kFileCurrent);
  EXPECT_EQ(position, 1024);
}

TEST_F(TransferTest, FailingSectorsFailEveryTransferThatTouchesThem) {
  disk("sectors 100\nfail read 10 2\nfail write 20 1\nfail any 30 1 1117\nfail read 31 1 5");
  EXPECT_EQ(read_at(8, 2), (Outcome{0, 2}));
  EXPECT_EQ(read_at(9, 2), (Outcome{23, 0}));
  EXPECT_EQ(read_at(11, 5).code, 23U);
  EXPECT_EQ(read_at(12, 8).code, 0U);
  EXPECT_EQ(write_at(10, 2, 1).code, 0U);
  EXPECT_EQ(read_at(10, 1).code, 23U);
  EXPECT_EQ(write_at(20, 1, 1).code, 29U);
  EXPECT_THAT(first_bytes(20, 1), ElementsAre(0));
  EXPECT_EQ(write_at(0, 100, 1).code, 29U) << "the first line of those touched decides";
  EXPECT_EQ(read_at(30, 2).code, 1117U);
}

TEST_F(TransferTest, HealingWriteMakesItsSectorsReadable) {
  disk("sectors 100\nheal\nfail read 10 10\nfail any 50 1\nfail write 60 1");
  EXPECT_EQ(write_at(12, 2, 9).code, 0U);
  EXPECT_THAT(first_bytes(12, 2), ElementsAre(9, 9));
  EXPECT_EQ(read_at(11, 1).code, 23U);
  EXPECT_EQ(read_at(14, 1).code, 23U);
  EXPECT_EQ(write_at(50, 1, 1).code, 0U);
  EXPECT_EQ(read_at(50, 1).code, 0U);
  EXPECT_EQ(write_at(60, 1, 1).code, 29U);
}

TEST_F(TransferTest, ShortTransferStopsBeforeItsPlace) {
  disk("sectors 100\nshort read 10 5\nshort write 20 1");
  EXPECT_EQ(read_at(7, 10), (Outcome{0, 3}));
  EXPECT_EQ(read_at(12, 2), (Outcome{0, 0}));
  EXPECT_EQ(write_at(18, 4, 1), (Outcome{0, 2}));
  EXPECT_THAT(first_bytes(18, 4), ElementsAre(1, 1, 0, 0));
}

TEST_F(TransferTest, StrayAndDroppedWritesAreReportedDone) {
  disk("sectors 100\nstray 11 2 40\nstray 98 1 5\nstray 14 1 -20\ndrop 13 1");
  EXPECT_EQ(write_at(10, 6, 1), (Outcome{0, 6}));
  EXPECT_THAT(first_bytes(10, 6), ElementsAre(1, 0, 0, 0, 0, 1));
  EXPECT_THAT(first_bytes(50, 4), ElementsAre(0, 1, 1, 0));
  EXPECT_EQ(write_at(97, 3, 2), (Outcome{0, 3}));
  EXPECT_THAT(first_bytes(97, 3), ElementsAre(2, 0, 2));
}

TEST_F(TransferTest, SlowPlacesAndRatesTakeTheirTime) {
  disk("sectors 4097\nrate 2 1\nslow 100 1 500");
  const double& now = headless::desktop.steady;
  read_at(0, 2048);
  EXPECT_NEAR(now, 0.5 + 0.5, 1e-9);
  read_at(4096, 1);
  EXPECT_NEAR(now, 1.0 + 1.0 / 2048, 1e-9);
  disk("sectors 4096\nfail any 100 1\nslow 100 1 500");
  write_at(90, 20, 1);
  EXPECT_NEAR(now, 1.5 + 1.0 / 2048, 1e-9) << "a failing transfer takes its time too";
}

TEST_F(TransferTest, ReadOnlyDiskRefusesWrites) {
  disk("sectors 10\nreadonly\nfail write 0 10");
  EXPECT_EQ(write_at(0, 1, 1), (Outcome{19, 0}));
  EXPECT_EQ(write_at(10, 1, 1), (Outcome{27, 0}));
  EXPECT_EQ(read_at(0, 1), (Outcome{0, 1}));
}

TEST_F(TransferTest, VanishedDiskAnswersNothing) {
  disk("sectors 10\nvanish 2\nfail read 0 1");
  EXPECT_EQ(read_at(0, 1).code, 23U);
  EXPECT_EQ(read_at(1, 1).code, 0U);
  EXPECT_EQ(read_at(1, 1).code, 1167U);
  EXPECT_EQ(flush(handle_), 1167U);
  EXPECT_EQ(lock(handle_), 1167U);
  EXPECT_EQ(ask(0x70000, {}, 24).code, 1167U);
  EXPECT_EQ(open_as(R"(\\.\PhysicalDrive0)"), 1167U);
}

TEST_F(TransferTest, ImageIsReadAndWrittenInPlace) {
  make_file("whole.img", std::string(512, 'a') + std::string(512, 'b') + "tail");
  disk("image whole.img");
  EXPECT_THAT(first_bytes(0, 2), ElementsAre('a', 'b'));
  EXPECT_EQ(write_at(1, 1, 'c').code, 0U);
  EXPECT_EQ(flush(handle_), 0U);
  EXPECT_EQ(read_at(2, 1).code, 27U);
  EXPECT_EQ(contents_of("whole.img"), std::string(512, 'a') + std::string(512, 'c') + "tail");
  detach_all();
  EXPECT_EQ(headless::desktop.open_files, 0);
}

TEST_F(TransferTest, ImageTransferIsOneSeekAndOneCall) {
  make_file("whole.img", std::string(51200, 'a'));
  disk("image whole.img\nfail read 99 1\nslow 98 1 1");
  headless::desktop.calls.clear();
  read_at(0, 90);
  EXPECT_THAT(headless::desktop.calls, ElementsAre("SetFilePointerEx", "ReadFile"));
  headless::desktop.fail_first = headless::desktop.calls_made + 2;
  headless::desktop.fail_last = headless::desktop.fail_first;
  EXPECT_EQ(write_at(0, 1, 1), (Outcome{1117, 0}));
}

}  // namespace
}  // namespace virtualdisk
