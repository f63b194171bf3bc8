#include "smart/snapshot.h"

#include <gmock/gmock.h>

#include "disk/drive.h"
#include "form/form1.h"
#include "smart/identification.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class SnapshotTest : public Rig {
 protected:
  /// Takes a snapshot of drive `drive`, made from `disk_file`.
  Snapshot take(const std::string& disk_file, int drive = 0) {
    attach(drive, disk_file);
    OpenDrive(drive);
    Check_drv(drive);
    return Get_Smart_Data(drive);
  }
};

TEST_F(SnapshotTest, ListsAttributesInTheDrivesOrder) {
  const Snapshot snapshot = take("sectors 10\nsmart 9 0x32 99 98 20 0x0C41\nsmart 5 0x33 100 100 36 7\n");
  EXPECT_EQ(smart.Smart_List,
            "009 POWER_ON_HOURS_COUNT          Flags=wO 32h 00h  Current=099  Worst=098  "
            "Attribs=41h 0Ch 00h 00h 00h 00h  \r\n"
            "005 REALLOC_SECTOR_COUNT          Flags=WO 33h 00h  Current=100  Worst=100  "
            "Attribs=07h 00h 00h 00h 00h 00h  \r\n");
  ASSERT_EQ(snapshot.Attr_Count, 2);
  EXPECT_EQ(snapshot.Attributes[0].Raw, 0x0C41);
  EXPECT_EQ(snapshot.Attributes[0].Threshold, 20);
  EXPECT_EQ(snapshot.Attributes[1].Threshold, 36);
  EXPECT_EQ(snapshot.Attributes[2].Attr_Id, 0) << "one empty element behind the last";
}

TEST_F(SnapshotTest, AsManyRawBytesCountAsTheIdAndTheMakerSay) {
  const std::string lines =
      "smart 5 0 1 1 0 0x000100000005\nsmart 9 0 1 1 0 0x000000010005\nsmart 194 0 1 1 0 0x2D001C\n"
      "smart 1 0 1 1 0 77\nsmart 7 0 1 1 0 78\n";
  Snapshot snapshot = take("sectors 10\n" + lines);
  EXPECT_EQ(snapshot.Attributes[0].Raw, 5);
  EXPECT_EQ(snapshot.Attributes[1].Raw, 65541);
  EXPECT_EQ(snapshot.Attributes[2].Raw, 0x1C);
  EXPECT_EQ(snapshot.Attributes[3].Raw, 77);
  snapshot = take("sectors 10\nmodel Fujitsu MX\n" + lines);
  EXPECT_EQ(snapshot.Attributes[0].Raw, 5);
  EXPECT_EQ(snapshot.Attributes[3].Raw, 0);
  EXPECT_EQ(snapshot.Attributes[4].Raw, 0);
}

TEST_F(SnapshotTest, DrivesWithoutSmartGiveAnEmptySnapshot) {
  EXPECT_EQ(take("sectors 10\nsmart off\n").Drive_Type, 0);
  EXPECT_EQ(take("sectors 10\nsmart 5 0 1 1 0 0\nsmart disabled\n").Attr_Count, 0);
  EXPECT_EQ(take("sectors 10\nsmart 5 0 1 1 0 0\nsmart nobit\n").Attr_Count, 1) << "the missing bit stops nothing";
  EXPECT_EQ(take("sectors 10\nsmart 5 0 1 1 0 0\nsmart atapi\n").Drive_Type, 2);
  EXPECT_EQ(smart.Smart_Snapshot.Attributes.size(), 2U);
}

TEST_F(SnapshotTest, AnOddDriveNumberDoesNotSetTheSlaveBit) {
  EXPECT_EQ(take("sectors 10\nsmart 5 0 1 1 0 0\n", 3).Attr_Count, 1);
  std::vector<std::vector<int>> features;
  for (const headless::Call& call : passed_to("DeviceIoControl")) {
    if (call.in.size() != 32 || call.in[10] != 0xB0) continue;
    features.push_back({call.in[4], call.in[9], call.in[12]});
  }
  EXPECT_THAT(features, ElementsAre(ElementsAre(0xD8, 0xA0, 3), ElementsAre(0xD0, 0xA0, 3), ElementsAre(0xD1, 0xA0, 3)))
      << "features, drive/head, drive number";
}

TEST_F(SnapshotTest, HostilePagesDoNoHarm) {
  write_file("ff.bin", std::string(512, '\xFF'));
  write_file("twins.bin", std::string(512, '\x05'));
  const Snapshot full = take("sectors 10\nattributes ff.bin\nthresholds ff.bin\n");
  EXPECT_EQ(full.Attr_Count, 30);
  EXPECT_EQ(full.Attributes[0].Threshold, 255);
  EXPECT_EQ(full.Attributes[1].Threshold, 0) << "the first of an id alone";
  EXPECT_EQ(full.Attributes[29].Attr_Name, "(unknown parameter)          ");
  EXPECT_EQ(take("sectors 10\nattributes twins.bin\n").Attr_Count, 30);
}

TEST(DeviceMap, BitSevenIsNeverSet) {
  EXPECT_TRUE(Is_Bit_Set(0xFF, 6));
  EXPECT_FALSE(Is_Bit_Set(0xFF, 7));
  EXPECT_FALSE(Is_Bit_Set(0xFF, 11));
}

}  // namespace
