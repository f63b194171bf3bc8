#include "disk/volume.h"

#include <gmock/gmock.h>

#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
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

TEST_F(VolumeLock, QueriesPartitionsThenVolumesAndOpensThemForItselfAndOthers) {
  headless::desktop.wmi_answers = {
      {"ASSOCIATORS OF {Win32_DiskDrive", {{{"DeviceID", "Disk #1, Partition #0"}}}, false, -1},
      {"ASSOCIATORS OF {Win32_DiskPartition", {{{"DeviceID", "E:"}}}, false, -1}};
  volumes.hVolumes.fill(77);
  Lock_Unlock_All_Volumes(1, "LOCK");
  EXPECT_EQ(passed_to("wmi_open").at(0).text, "winmgmts:{impersonationLevel=Impersonate}!//.");
  EXPECT_THAT(headless::desktop.wmi_queries,
              ElementsAre(R"(ASSOCIATORS OF {Win32_DiskDrive.DeviceID="\\\\.\\PhysicalDrive1"} WHERE AssocClass = )"
                          "Win32_DiskDriveToDiskPartition",
                          "ASSOCIATORS OF {Win32_DiskPartition.DeviceID=\"Disk #1, Partition #0\"} WHERE AssocClass = "
                          "Win32_LogicalDiskToPartition"));
  const headless::Call opened = passed_to("CreateFileA").at(0);
  EXPECT_EQ(opened.text, R"(\\.\E:)");
  EXPECT_THAT(opened.numbers, ElementsAre(0xC0000000, 3, 3, 0x20000000)) << "access, share mode, disposition, flags";
  EXPECT_EQ(volumes.hVolumes.front(), kernel32::kInvalidHandle) << "the system has no E: here";
  EXPECT_THAT(std::vector(volumes.hVolumes.begin() + 1, volumes.hVolumes.end()), Each(0)) << "cleared by the pass";
}

TEST_F(VolumeLock, ALockRefusedOnceIsGrantedTheSecondTime) {
  attach(1, "sectors 1000\nvolume E:\n");
  // The service and the volume are opened, then the volume is locked.
  headless::desktop.fail_first = headless::desktop.fail_last = headless::desktop.calls_made + 3;
  Lock_Unlock_All_Volumes(1, "LOCK");
  std::vector<std::uint32_t> codes;
  for (const headless::Call& call : passed_to("DeviceIoControl")) codes.push_back(call.numbers[0]);
  EXPECT_THAT(codes, ElementsAre(0x90018, 0x90018, 0x90020)) << "lock, lock, dismount";
  EXPECT_THAT(headless::desktop.debug, HasSubstr("FSCTL_LOCK_VOLUME Volume E: locked"));
  EXPECT_EQ(kernel32::CreateFileA(R"(\\.\E:)", platform::kGenericRead, platform::kShareRead | platform::kShareWrite,
                                  platform::kOpenExisting, 0),
            kernel32::kInvalidHandle);
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
  headless::desktop.wmi_queries.clear();
  attach(1, "sectors 1000\n");
  Lock_Unlock_All_Volumes(1, "LOCK");
  EXPECT_THAT(headless::desktop.wmi_queries, IsEmpty()) << "the real drive 1 is not asked about";
}

}  // namespace
