#include "measure/read_map.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ReadMap, ARunThatGoesOnMakesOneBlockLonger) {
  ReadMap map = untried_map(100'000'000);
  for (std::int64_t lba = 0; lba < 50'000'000; lba += 100) mark(lba, 100, Tried::finished, &map);
  EXPECT_THAT(map.blocks, ElementsAre(ReadBlock{0, 50'000'000, Tried::finished},
                                      ReadBlock{50'000'000, 50'000'000, Tried::not_tried}));
}

TEST(ReadMap, HoldsOfEverySectorWhatWasSaidLast) {
  constexpr std::int64_t kSectors = 60;
  std::mt19937 random(5);
  for (int round = 0; round < 200; ++round) {
    ReadMap map = untried_map(kSectors);
    std::vector<Tried> plain(kSectors, Tried::not_tried);
    for (int step = 0; step < 40; ++step) {
      const auto first = static_cast<std::int64_t>(random() % (kSectors + 20)) - 10;
      const auto count = static_cast<std::int64_t>(random() % 20) - 2;
      const auto state = static_cast<Tried>(random() % 4);
      mark(first, count, state, &map);
      for (std::int64_t at = first; first >= 0 && at < std::min(first + count, kSectors); ++at) plain[at] = state;

      std::int64_t expected = 0;
      for (std::size_t i = 0; i < map.blocks.size(); ++i) {
        const ReadBlock& block = map.blocks[i];
        ASSERT_EQ(block.first, expected);
        ASSERT_GT(block.sectors, 0);
        ASSERT_TRUE(i == 0 || map.blocks[i - 1].state != block.state);
        for (std::int64_t at = block.first; at < block.end(); ++at) ASSERT_EQ(plain[at], block.state) << at;
        expected = block.end();
      }
      ASSERT_EQ(expected, kSectors);
    }
    EXPECT_EQ(count(map, Tried::bad_sector), std::count(plain.begin(), plain.end(), Tried::bad_sector));
  }
}

TEST(ReadMap, WhatIsNotDoneIsAskedForInOnePieceAndWithinTheRange) {
  ReadMap map = untried_map(1000);
  mark(0, 500, Tried::finished, &map);
  mark(200, 50, Tried::failed_transfer, &map);
  mark(500, 20, Tried::failed_transfer, &map);
  mark(600, 1, Tried::bad_sector, &map);
  EXPECT_THAT(not_done(map, 0, 1000), ElementsAre(SectorRun{200, 50}, SectorRun{500, 100}, SectorRun{601, 399}));
  EXPECT_THAT(not_done(map, 210, 300), ElementsAre(SectorRun{210, 40}, SectorRun{500, 10}));
  EXPECT_THAT(not_done(map, 900, INT64_MAX), ElementsAre(SectorRun{900, 100}));
  EXPECT_THAT(not_done(map, 250, 250), IsEmpty());
  EXPECT_THAT(not_done(map, 1000, 5), IsEmpty());
}

}  // namespace
