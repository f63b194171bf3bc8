#include "results/map_writer.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "app/handlers.h"
#include "disk/counters.h"
#include "form/form1.h"
#include "measure/measure.h"
#include "results/map_file.h"
#include "tests/support/rig.h"

namespace {

using ::testing::HasSubstr;

class MapOfRun : public EachSectorSize {
 protected:
  static constexpr const char* kDisk = "sectors 122880\nserial S1\nfail read 30000 8\n";

  static std::uint32_t run(const std::string& switches, const std::string& disk = kDisk) {
    return start(disk_switch(0, disk) + "/D:0 " + switches);
  }
  static ReadMap map_in(const std::string& name) {
    MapFile file;
    EXPECT_EQ(read_map_file(read_file(path(name)), &file), "");
    return file.map;
  }
  static void cancel_behind(std::int64_t sectors) {
    headless::desktop.at_pump = [sectors](int) {
      if (measure.done >= sectors) headless::press_control_c();
    };
  }
};

TEST_P(MapOfRun, TellsWhatWasReadFailedAndNotTried) {
  run("/OP:READ /COUNT:81920 /MAP:" + path("m"));
  EXPECT_EQ(count(map_in("m"), Tried::finished), 61440);
  EXPECT_EQ(count(map_in("m"), Tried::failed_transfer), 20480);
  EXPECT_EQ(count(map_in("m"), Tried::not_tried), 122880 - 81920);
  run("/OP:READ /PINPOINT /MAP:" + path("m"));
  EXPECT_EQ(count(map_in("m"), Tried::finished), 122880 - 8);
  EXPECT_EQ(count(map_in("m"), Tried::bad_sector), 8);
}

TEST_P(MapOfRun, ACancelledRunIsResumedWhereItEnded) {
  cancel_behind(40960);
  run("/OP:READ /MAP:" + path("m"));
  headless::desktop.at_pump = nullptr;
  const std::string map = path("m");
  std::filesystem::copy_file(map, path("before"));
  EXPECT_EQ(run("/OP:READ /RESUME:" + map + " /MAP:" + map), 1U) << "the transfer that failed is read again";
  EXPECT_EQ(counters.Sectors_Done, 122880 - 20480);
  EXPECT_THAT(out(), HasSubstr("RESUMED from " + map +
                               ": 20480 sectors were done before and not read again, 102400 "
                               "were left.\r\n"));
  EXPECT_EQ(count(map_in("m"), Tried::not_tried), 0);
  EXPECT_EQ(run("/OP:READ /PINPOINT /RESUME:" + map + " /MAP:" + map), 1U);
  EXPECT_EQ(count(map_in("m"), Tried::bad_sector), 8);
  EXPECT_EQ(run("/OP:READ /RESUME:" + map + " /MAP:" + map), 0U) << "nothing is left to read";
  EXPECT_EQ(counters.Sectors_Done, 0);
  EXPECT_EQ(count(map_in("m"), Tried::bad_sector), 8);
}

TEST_P(MapOfRun, IsWrittenEveryHalfMinuteAndWhole) {
  open(disk_switch(0, "sectors 819200\nrate 5\n") + "/D:0 /MAP:" + path("m"));
  std::int64_t before = 0;
  headless::desktop.at_pump = [&before](int) {
    if (measure.seconds > 33.0 && before == 0) before = count(map_in("m"), Tried::finished);
  };
  click(CmdRead_Click);
  EXPECT_GT(before, 200000) << "10 MiB every two seconds";
  EXPECT_EQ(count(map_in("m"), Tried::finished), 819200);
}

TEST_P(MapOfRun, LeavingTheProgramKeepsTheMap) {
  open(disk_switch(0, kDisk) + "/D:0 /MAP:" + path("m"));
  headless::desktop.at_pump = [](int) {
    if (measure.done >= 81920) CmdExit_Click();
  };
  EXPECT_TRUE(click(CmdRead_Click));
  EXPECT_EQ(count(map_in("m"), Tried::not_tried), 122880 - 81920);
}

TEST_P(MapOfRun, AnotherDriveIsRefused) {
  run("/OP:READ /MAP:" + path("m"));
  EXPECT_EQ(run("/OP:READ /RESUME:" + path("m"), "sectors 122880\nserial S2\n"), 1U);
  EXPECT_THAT(err(),
              HasSubstr("is of the drive with the serial number \"S1\", this one has \"S2\". Nothing was read."));
  EXPECT_EQ(run("/OP:READ /RESUME:" + path("m"), "sectors 122888\nserial S1\n"), 1U);
  EXPECT_THAT(err(), HasSubstr("is of a disk of 122880 sectors, this one has 122888. Nothing was read."));
  EXPECT_EQ(counters.Sectors_Done, 0);
}

TEST_P(MapOfRun, AnotherProgramsMapIsTakenWhereItFits) {
  write_file("d", "0x0 ? 1\n0x0 0x1400000 +\n0x1400000 0x1000 -\n0x1401000 0x27FF000 ?\n");
  EXPECT_EQ(run("/OP:READ /RESUME:" + path("d") + " /MAP:" + path("m")), 0U);
  EXPECT_EQ(counters.Sectors_Done, 122880 - 40968);
  EXPECT_EQ(count(map_in("m"), Tried::bad_sector), 8) << "what it found is kept";
  write_file("d", "0x0 ? 1\n0x0 0x4000000 +\n");
  EXPECT_EQ(run("/OP:READ /RESUME:" + path("d")), 1U) << "larger than the disk";
  write_file("d", "0x0 ? 1\n0x0 0x1000 +\n0x2000 0x1000 +\n");
  EXPECT_EQ(run("/OP:READ /RESUME:" + path("d")), 1U);
  EXPECT_THAT(err(), HasSubstr("\" is no map: line 3"));
  EXPECT_EQ(run("/OP:READ /RESUME:" + path("none")), 1U);
  EXPECT_EQ(run("/OP:SEARCH /FIND:tx /RESUME:" + path("d")), 1U);
  EXPECT_THAT(err(), HasSubstr("/RESUME needs /OP:READ."));
}

ON_EACH_SECTOR_SIZE(MapOfRun);

}  // namespace
