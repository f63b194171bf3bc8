#include "places/boot_sector.h"

#include <gtest/gtest.h>

#include "tests/support/tables.h"

namespace {

TEST(BootSectors, OfNtfsGiveClustersFromTheFirstSector) {
  DiskImage image(1);
  image.ntfs(0, 799);
  const auto boot = decode_boot_sector(image.bytes);
  ASSERT_TRUE(boot);
  EXPECT_EQ(boot->bytes_per_cluster, 4096);
  EXPECT_EQ(boot->clusters, 99);
  EXPECT_EQ(boot->heap_start, 0);
  EXPECT_EQ(own_area_name(*boot, boot->heap_end()), "backup boot sector");
  image.bytes[13] = 0xF4;
  bytes::put_le(image.bytes, 40, 8, std::uint64_t{1} << 32);
  EXPECT_EQ(decode_boot_sector(image.bytes)->bytes_per_cluster, 2 << 20) << "a negative power of two";
}

TEST(BootSectors, OfFatBeginTheirClustersBehindTheRootDirectory) {
  DiskImage image(1);
  image.fat16(0, 20000);
  const auto boot = decode_boot_sector(image.bytes);
  ASSERT_TRUE(boot);
  EXPECT_EQ(boot->kind, FileSystem::fat16);
  EXPECT_EQ(boot->heap_start, (4 + 64 + 32) * 512);
  EXPECT_EQ(boot->clusters, 9950);
  EXPECT_EQ(own_area_name(*boot, 3 * 512), "boot sector");
  EXPECT_EQ(own_area_name(*boot, 4 * 512), "file allocation table");
  EXPECT_EQ(own_area_name(*boot, 68 * 512), "root directory");
  for (const auto& [size, kind] :
       {std::pair{100 + 4085 * 2 - 1, FileSystem::fat12}, {100 + 4085 * 2, FileSystem::fat16}}) {
    image.fat16(0, static_cast<std::uint16_t>(size));
    EXPECT_EQ(decode_boot_sector(image.bytes)->kind, kind) << size;
  }
}

TEST(BootSectors, WithNumbersThatCannotBeAreNone) {
  const auto broken = [](std::size_t at, std::uint8_t value) {
    DiskImage image(1);
    image.fat16(0, 20000);
    image.bytes[at] = value;
    return !decode_boot_sector(image.bytes);
  };
  EXPECT_TRUE(broken(510, 0)) << "signature";
  EXPECT_TRUE(broken(0, 0x90)) << "jump";
  EXPECT_TRUE(broken(12, 3)) << "768 bytes a sector";
  EXPECT_TRUE(broken(13, 3)) << "3 sectors a cluster";
  EXPECT_TRUE(broken(13, 0));
  EXPECT_TRUE(broken(14, 0)) << "nothing reserved";
  EXPECT_TRUE(broken(16, 0)) << "no table";
  EXPECT_TRUE(broken(23, 0xFF)) << "larger than the volume";
  EXPECT_FALSE(broken(3, 'M'));
}

}  // namespace
