#include "disk/volume.h"

#include <gmock/gmock.h>

#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class VolumeLock : public Rig {};

TEST_F(VolumeLock, EveryVolumeIsLockedTwiceAndDismountedAndTheLastIsUnlocked) {
  attach(1, "sectors 1000\nvolume E:\nvolume F:\n");
  headless::desktop.calls.clear();
  Lock_Unlock_All_Volumes(1, "LOCK");
  EXPECT_EQ(count_of(headless::desktop.debug, "FSCTL_DISMOUNT_VOLUME - Dismounted volume "), 2);
  EXPECT_EQ(virtualdisk::open_handles(), 2);
  Lock_Unlock_All_Volumes(1, "UNLOCK");
  EXPECT_EQ(virtualdisk::open_handles(), 1) << "E: stays locked";
  EXPECT_THAT(headless::desktop.debug, HasSubstr("MY_UNLOCK_VOLUME FSCTL_UNLOCK_VOLUME - Volume unlocked"));
}

TEST_F(VolumeLock, ASecondPassLocksAllVolumesAgain) {
  attach(1, "sectors 1000\nvolume E:\nvolume F:\nvolume G:\n");
  for (int pass = 0; pass < 3; ++pass) {
    headless::desktop.debug.clear();
    Lock_Unlock_All_Volumes(1, "LOCK");
    for (const char* volume : {"E:", "F:", "G:"}) {
      EXPECT_THAT(headless::desktop.debug, HasSubstr(std::string("Volume ") + volume + " locked")) << pass;
    }
    EXPECT_EQ(virtualdisk::open_handles(), 3);
    Lock_Unlock_All_Volumes(1, "UNLOCK");
    EXPECT_EQ(virtualdisk::open_handles(), 2);
  }
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

TEST_F(VolumeLock, EveryDriveHasItsOwnVolumes) {
  headless::desktop.wmi_answers = {
      {"ASSOCIATORS OF {Win32_DiskDrive", {{{"DeviceID", "Disk #1, Partition #0"}}}, false, -1},
      {"ASSOCIATORS OF {Win32_DiskPartition", {{{"DeviceID", "E:"}}}, false, -1}};
  attach(0, "sectors 1000\nvolume E:\n");
  Lock_Unlock_All_Volumes(1, "LOCK");
  EXPECT_EQ(virtualdisk::open_handles(), 0) << "the real drive's E: is not the virtual disk's";
  EXPECT_EQ(headless::desktop.wmi_queries.front(),
            R"(ASSOCIATORS OF {Win32_DiskDrive.DeviceID="\\\\.\\PhysicalDrive1"} WHERE AssocClass = )"
            "Win32_DiskDriveToDiskPartition");
  headless::desktop.wmi_queries.clear();
  attach(1, "sectors 1000\n");
  Lock_Unlock_All_Volumes(1, "LOCK");
  EXPECT_THAT(headless::desktop.wmi_queries, IsEmpty()) << "the real drive 1 is not asked about";
}

}  // namespace
