#include "disk/volume.h"

#include <gmock/gmock.h>

#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class VolumeLock : public Rig {};

TEST_F(VolumeLock, EveryVolumeIsLockedTwiceAndDismountedAndTheLastIsUnlocked) {
  attach(1, "sectors 1000\nvolume E:\nvolume F:\n");
  headless::desktop.calls.clear();
  Lock_Unlock_All_Volumes(1, "LOCK");
  EXPECT_THAT(volumes_on(1), ElementsAre("E:", "F:"));
  EXPECT_EQ(count_of(headless::desktop.debug, "FSCTL_DISMOUNT_VOLUME - Dismounted volume "), 2);
  EXPECT_EQ(virtualdisk::open_handles(), 2);
  Lock_Unlock_All_Volumes(1, "UNLOCK");
  EXPECT_EQ(virtualdisk::open_handles(), 1) << "E: stays locked until the process ends";
  EXPECT_THAT(headless::desktop.debug, HasSubstr("MY_UNLOCK_VOLUME FSCTL_UNLOCK_VOLUME - Volume unlocked"));
}

TEST_F(VolumeLock, AVolumeThatCannotBeOpenedEndsThePass) {
  attach(1, "sectors 1000\nvolume E: busy\nvolume F:\n");
  Lock_Unlock_All_Volumes(1, "LOCK");
  EXPECT_EQ(virtualdisk::open_handles(), 0);
  EXPECT_THAT(headless::desktop.debug, HasSubstr("Cannot open handle for E: to dismount."));
  Lock_Unlock_All_Volumes(1, "lock");
  EXPECT_EQ(virtualdisk::open_handles(), 0) << "lower case is the unlock pass";
}

TEST_F(VolumeLock, NothingIsLockedWhereTheServiceIsAbsentOrTheDiskHasNoVolumes) {
  headless::desktop.wmi_absent = true;
  Lock_Unlock_All_Volumes(1, "LOCK");
  attach(1, "sectors 1000\n");
  Lock_Unlock_All_Volumes(1, "LOCK");
  headless::desktop.calls.clear();
  Lock_Unlock_All_Volumes(1, "UNLOCK");
  EXPECT_THAT(headless::desktop.calls, IsEmpty());
}

TEST_F(VolumeLock, AVirtualDisksVolumesAreNeverThoseOfTheRealDrive) {
  headless::desktop.wmi_answers = {
      {"ASSOCIATORS OF {Win32_DiskDrive", {{{"DeviceID", "Disk #1, Partition #0"}}}, false, -1},
      {"ASSOCIATORS OF {Win32_DiskPartition", {{{"DeviceID", "C:"}}}, false, -1}};
  EXPECT_THAT(volumes_on(1), ElementsAre("C:"));
  attach(1, "sectors 1000\n");
  EXPECT_THAT(volumes_on(1), IsEmpty());
  EXPECT_EQ(headless::desktop.wmi_queries.front(),
            R"(ASSOCIATORS OF {Win32_DiskDrive.DeviceID="\\\\.\\PhysicalDrive1"} WHERE AssocClass = )"
            "Win32_DiskDriveToDiskPartition");
}

}  // namespace
