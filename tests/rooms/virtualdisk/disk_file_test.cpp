#include "virtualdisk/disk_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace virtualdisk {
namespace {

std::string error_of(const std::string& text) {
  return parse_disk_file(text, "my.vd").error;
}

TEST(DiskFile, ReadsNumbersTextsAndComments) {
  const DiskFile disk = parse_disk_file(
                            "\xEF\xBB\xBF# a disk\r\nsectors 0x1000 # all of it\r\n\n model  Two  words \r\n"
                            "smart 0x05 0x33 100 99 10 0xFFFFFFFFFFFF\nstray 1 2 -3\nrate 1.5\nvolume e: busy",
                            "my.vd")
                            .disk;
  EXPECT_EQ(disk.sectors, 4096);
  EXPECT_EQ(disk.model, "Two  words");
  EXPECT_EQ(disk.attributes.at(0).raw, 0xFFFFFFFFFFFFU);
  EXPECT_EQ(disk.strays.at(0).offset, -3);
  EXPECT_EQ(disk.inner_rate, 1.5);
  EXPECT_EQ(disk.volumes.at(0).name, "E:");
  EXPECT_TRUE(disk.volumes.at(0).busy);
}

TEST(DiskFile, NamesFileAndLineOfWhatIsWrong) {
  EXPECT_EQ(error_of("sectors 8\n\nturbo on"), "my.vd:3: unknown directive: turbo");
  EXPECT_EQ(error_of("sectors 8x"), "my.vd:1: bad number for sectors: 8x");
  EXPECT_EQ(error_of("sectors 0"), "my.vd:1: sectors must be 1 to 18014398509481984: 0");
  EXPECT_EQ(error_of("sectors 99999999999999999999"), "my.vd:1: bad number for sectors: 99999999999999999999");
  EXPECT_EQ(error_of("sectors 8\nsectors 9"), "my.vd:2: sectors is given twice");
  EXPECT_EQ(error_of("sectors 8 9"), "my.vd:1: too much on the line: 9");
  EXPECT_EQ(error_of("sectors 8\nfail read 5"), "my.vd:2: missing count");
  EXPECT_EQ(error_of("sectors 8\nfail seek 5 1"), "my.vd:2: unknown kind of transfer: seek");
  EXPECT_EQ(error_of("sectors 8\nserial 123456789012345678901"), "my.vd:2: serial has more than 20 characters");
  EXPECT_EQ(error_of("sectors 8\nsmart sleepy"), "my.vd:2: unknown word after smart: sleepy");
  EXPECT_EQ(error_of("sectors 8\nrate 0"), "my.vd:2: bad number for outer rate: 0");
  EXPECT_EQ(error_of("sectors 8\nvolume EE:"), "my.vd:2: bad volume, a letter and a colon are expected: EE:");
  EXPECT_EQ(error_of("sectors 8\nvolume E:\nvolume e:"), "my.vd:3: volume E: is listed twice");
  EXPECT_EQ(error_of("sectors 8\nfile e: 1 1 a\nvolume F:"), "my.vd:2: volume E: is not listed");
  EXPECT_EQ(error_of("sectors 8\nvolume E:\nmetadata E: 1 1"), "my.vd:3: missing path");
  EXPECT_EQ(error_of("sectors 8\ngrow 5 1 on slow"), "my.vd:2: no attribute 5 to grow");
  EXPECT_EQ(error_of("sectors 8\nlogical 2048"), "my.vd:2: unknown bytes of a sector, 512 or 4096: 2048");
  EXPECT_EQ(error_of("sectors 8\nphysical 512\nlogical 4096"),
            "my.vd:3: a physical sector cannot be smaller than a logical one");
  EXPECT_EQ(error_of("model x"), "my.vd:1: neither sectors nor image is given");
}

TEST(DiskFile, EveryDirectiveMissesItsWords) {
  for (const char* name :
       {"sectors", "image",    "model",      "serial",     "firmware", "bus",      "geometry", "length",
        "smart",   "identify", "attributes", "thresholds", "grow",     "fail",     "short",    "slow",
        "rate",    "stray",    "drop",       "vanish",     "volume",   "requests", "logical",  "physical"}) {
    EXPECT_THAT(error_of(name), testing::StartsWith("my.vd:1: missing ")) << name;
  }
}

}  // namespace
}  // namespace virtualdisk
