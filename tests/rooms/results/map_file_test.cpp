// The two files of tests/map_file: ours, which its script shows to ddrescue, and one that ddrescue made there.

#include "results/map_file.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class MapFiles : public ::testing::Test {
 protected:
  static std::string stored(const std::string& name) {
    std::ostringstream contents;
    contents << std::ifstream(std::filesystem::path(__FILE__).parent_path() / "../../map_file" / name).rdbuf();
    return contents.str();
  }

  /// What is wrong with the lines behind a sound status line, which is line 1.
  static std::string problem(const std::string& lines) {
    MapFile file;
    return read_map_file("0x0 ? 1\n" + lines, &file);
  }

  static std::vector<ReadBlock> blocks(const std::string& lines) {
    MapFile file;
    EXPECT_EQ(read_map_file("0x0 ? 1\n" + lines, &file), "");
    return file.map.blocks;
  }

  static ReadMap a_map() {
    ReadMap map = untried_map(9'000'000'000);
    mark(0, 6'000'000'000, Tried::finished, &map);
    mark(16'065, 16'065, Tried::failed_transfer, &map);
    mark(624'000, 8, Tried::bad_sector, &map);
    return map;
  }
  const MapHeader header{
      .version = "1.0.0", .model = "Model\nX # 2", .serial = "S/1", .logical = 4096, .next_lba = 6'000'000'000};
};

TEST_F(MapFiles, OursIsTheFileThatTheScriptShowsToDdrescue) {
  EXPECT_EQ(map_text(a_map(), header), stored("ours.map"));
}

TEST_F(MapFiles, OursIsReadAgainWithWhatItIsAbout) {
  MapFile file;
  ASSERT_EQ(read_map_file(map_text(a_map(), header), &file), "");
  EXPECT_EQ(file.map.blocks, a_map().blocks);
  EXPECT_EQ(file.model, "Model X # 2");
  EXPECT_EQ(file.serial, "S/1");
  EXPECT_EQ(file.sectors, 9'000'000'000);
  EXPECT_EQ(file.logical, 4096);
  ASSERT_EQ(read_map_file(map_text(untried_map(1), {}), &file), "");
  EXPECT_EQ(file.serial, "");
}

TEST_F(MapFiles, ADdrescueFileTellsTheBlocksAlone) {
  MapFile file;
  ASSERT_EQ(read_map_file(stored("theirs.map"), &file), "");
  EXPECT_THAT(file.map.blocks,
              ElementsAre(ReadBlock{0, 40, Tried::finished}, ReadBlock{40, 1, Tried::bad_sector},
                          ReadBlock{41, 1, Tried::failed_transfer}, ReadBlock{42, 1, Tried::bad_sector},
                          ReadBlock{43, 53, Tried::finished}, ReadBlock{96, 16, Tried::failed_transfer},
                          ReadBlock{112, 16, Tried::finished}, ReadBlock{128, 1920, Tried::not_tried}));
  EXPECT_FALSE(file.serial || file.sectors || file.logical || file.model);
}

TEST_F(MapFiles, TheStatusIsFinishedOnceNothingIsLeftToRead) {
  ReadMap map = untried_map(10);
  mark(0, 9, Tried::finished, &map);
  EXPECT_THAT(map_text(map, header), Not(HasSubstr(" +               1\n")));
  mark(9, 1, Tried::bad_sector, &map);
  EXPECT_THAT(map_text(map, header), HasSubstr(" +               1\n"));
}

TEST_F(MapFiles, NumbersAreThoseOfCAndLinesEndAsTheyLike) {
  const auto wanted = ElementsAre(ReadBlock{0, 2, Tried::finished}, ReadBlock{2, 1, Tried::bad_sector});
  EXPECT_THAT(blocks("0 1024 +\n1024 512 -\n"), wanted);
  EXPECT_THAT(blocks("00 02000 +\r\n02000 01000 -\r\n"), wanted);
  EXPECT_THAT(blocks("# a remark\n\n 0X0\t0x200 +  # another\n0x200 0x200 +\n0x400 0x0 ?\n0x400 0x200 -"), wanted);
  MapFile file;
  EXPECT_EQ(read_map_file("0x00000200 *\n0x0 0x200 +\n", &file), "");
}

TEST_F(MapFiles, ASectorThatIsNotWhollyFinishedIsNotTried) {
  EXPECT_THAT(blocks("0 600 +\n600 1000 -\n"),
              ElementsAre(ReadBlock{0, 1, Tried::finished}, ReadBlock{1, 1, Tried::not_tried},
                          ReadBlock{2, 1, Tried::bad_sector}, ReadBlock{3, 1, Tried::not_tried}));
  EXPECT_THAT(blocks("0 100 +\n100 412 +\n"), ElementsAre(ReadBlock{0, 1, Tried::finished}));
  EXPECT_THAT(blocks("1000 1048 +\n"),
              ElementsAre(ReadBlock{0, 2, Tried::not_tried}, ReadBlock{2, 2, Tried::finished}));
}

TEST_F(MapFiles, WhatIsNoMapfileIsRefusedWithItsLine) {
  EXPECT_EQ(problem("0 512 +\n1024 512 +\n"), "line 3: the block begins at byte 1024, the one before ends at byte 512");
  EXPECT_THAT(problem("0 1024 +\n512 512 +\n"), StartsWith("line 3: the block begins at byte 512"));
  EXPECT_EQ(problem("0x4000000000000000 1 +\n"), "line 2: the block ends behind 2^62 bytes");
  for (const char* line : {"0 512", "0 512 x", "0 512 ++", "0 512 + +", "08 512 +", "0x 512 +", "-1 512 +", "0 512s +",
                           "0 0x10000000000000200 +", "0 0x4000000000000001 +", "0 512+"}) {
    EXPECT_THAT(problem(std::string("# one\n") + line + "\n"), StartsWith("line 3: this is no block")) << line;
  }
  EXPECT_EQ(problem(""), "there are no blocks");
  MapFile file;
  EXPECT_EQ(read_map_file("# only remarks\n", &file), "there is no status line");
  for (const char* line : {"0x0", "0x0 !", "0x0 ? 0", "0x0 ? 0x1", "0x0 ? 1 1", "0x0 0x200 +"}) {
    EXPECT_THAT(read_map_file(line, &file), StartsWith("line 1: this is no status line")) << line;
  }
}

}  // namespace
