#include "smart/identification.h"

#include <gmock/gmock.h>

#include "device/storage_query.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "smart/identify_data.h"
#include "tests/support/rig.h"
#include "virtualdisk/identify.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class IdentificationTest : public Rig {
 protected:
  /// Identifies drive 2, made from `disk_file`, and gives what Check_drv gave.
  bool identify(const std::string& disk_file) {
    attach(2, disk_file);
    form1.CommandLineMode = true;
    EXPECT_EQ(open_report("-"), "");
    OpenDrive(2);
    return Check_drv(2);
  }

  std::string raw_page(const std::string& name, const std::string& page) { return write_file(name, page); }
};

TEST_F(IdentificationTest, AnAtaDriveTellsItsIdentityAndTheLargestCountWins) {
  EXPECT_TRUE(identify("sectors 1000000\nmodel Plain Disk 5\nserial S-123\nfirmware 1.07\n"));
  EXPECT_EQ(identification.Disk_Model, "Plain Disk 5");
  EXPECT_EQ(identification.Disk_Serial, "S-123");
  EXPECT_EQ(identification.Disk_Firmware, "1.07");
  EXPECT_EQ(identification.Drive_Sectors, 1000000);
  EXPECT_EQ(out(),
            "Check_drv 2 was called\r\n"
            "IDE disk 2 Size=1000000(488 Mb)\r\n"
            "IDE disk geometry 2 Size=996030 (486 Mb)\r\n"
            "Check_drv 2 returned OK.\r\n");
}

TEST_F(IdentificationTest, BeyondTwentyEightBitsTheOtherSourcesCount) {
  EXPECT_TRUE(identify("sectors 600000000\n"));
  EXPECT_THAT(out(), HasSubstr("IDE disk 2 Size=268435455(131071 Mb)"));
  EXPECT_EQ(identification.Drive_Sectors, 600000000);
}

TEST_F(IdentificationTest, AScsiPortIsAskedOnlyWhereIdentifyAndGeometryGaveNothing) {
  EXPECT_TRUE(identify("sectors 5000\nbus miniport\nmodel Port Disk\ngeometry none\nlength none\n"));
  EXPECT_EQ(identification.Disk_Model, "Port Disk");
  EXPECT_EQ(identification.Drive_Sectors, 5000);
  EXPECT_THAT(out(), HasSubstr("Handle for SCSI2 created\r\nIOCTL_SCSI_MINIPORT called OK  "));
  disk.Sec_Buf.resize(512);
  EXPECT_FALSE(ReadAt(0, 1)) << "the port's handle does not transfer";
}

TEST_F(IdentificationTest, PassThroughAndLengthAnswerAlone) {
  EXPECT_TRUE(identify("sectors 7777\nbus scsi\ngeometry none\nlength none\n"));
  EXPECT_EQ(identification.Drive_Sectors, 7777);
  EXPECT_TRUE(identify("sectors 8888\nbus none\ngeometry none\n"));
  EXPECT_EQ(identification.Drive_Sectors, 8888);
  EXPECT_EQ(identification.Disk_Model, "");
}

TEST_F(IdentificationTest, ADriveThatAnswersNothingIsNotFound) {
  EXPECT_FALSE(identify("sectors 8888\nbus none\ngeometry none\nlength none\n"));
  EXPECT_EQ(out(),
            "Check_drv 2 was called\r\nIDE disk 2 Size=0(0 Mb)\r\nIDE disk geometry 2 Size=0 (0 Mb)\r\n"
            "SCSI disk 2 Size=0 (0 Mb)\r\n");
}

TEST_F(IdentificationTest, AnAnswerWithoutAModelKeepsItsSerialNumberAndFirmware) {
  const auto page_of = [](const virtualdisk::Identity& identity) {
    const virtualdisk::Page page = virtualdisk::identify_page(identity);
    return std::string(page.begin(), page.end());
  };
  const std::string described = "sectors 100\nmodel Described\nserial-property D-1\nfirmware D.1\nidentify page.bin\n";
  raw_page("page.bin", page_of({.serial = "I-1", .firmware = "I.1", .sectors = 100}));
  EXPECT_TRUE(identify(described));
  EXPECT_EQ(identification.Disk_Model, "Described");
  EXPECT_EQ(identification.Disk_Serial, "I-1");
  EXPECT_EQ(identification.Disk_Firmware, "I.1");
  EXPECT_EQ(identification.source, IdentitySource::identify);
  raw_page("page.bin", page_of({.sectors = 100}));
  EXPECT_TRUE(identify(described));
  EXPECT_EQ(identification.Disk_Serial, "D-1");
  EXPECT_EQ(identification.source, IdentitySource::descriptor) << "nothing came of IDENTIFY";
}

TEST_F(IdentificationTest, RequestsGoOutInTheirOrder) {
  EXPECT_TRUE(identify("sectors 100\n"));
  std::vector<std::uint32_t> codes;
  for (const headless::Call& call : passed_to("DeviceIoControl")) codes.push_back(call.numbers[0]);
  EXPECT_THAT(codes, ElementsAre(0x7C088, 0x70000, 0x4D004, 0x7405C, 0x2D1400))
      << "IDENTIFY, geometry, READ CAPACITY, length, then the device descriptor";
  const headless::Call capacity = passed_to("DeviceIoControl")[2];
  EXPECT_EQ(capacity.numbers[1], 585U);
  EXPECT_EQ(capacity.numbers[2], 585U);
  // SCSI_PASS_THROUGH of a 64-bit program: 56 bytes, 24 of sense after it, the data from 80 on.
  std::vector<std::uint8_t> expected(585);
  expected[0] = 56;
  expected[4] = 1;
  expected[6] = 6;
  expected[7] = 24;
  expected[8] = 1;
  expected[12] = 192;
  expected[16] = 2;
  expected[24] = 80;
  expected[32] = 56;
  expected[36] = 0x25;
  expected[37] = 8;
  expected[40] = 192;
  EXPECT_EQ(capacity.in, expected);
}

TEST_F(IdentificationTest, HostileIdentitiesDoNoHarm) {
  std::string page(512, '\xFF');
  raw_page("ff.bin", page);
  EXPECT_TRUE(identify("sectors 100\nidentify ff.bin\n"));
  EXPECT_EQ(identification.Disk_Model, "");
  EXPECT_EQ(identification.Drive_Sectors, 0xFFFFFFFF);
  EXPECT_EQ(identification.Num_Heads, 65535);
  for (std::size_t i = 54; i < 94; ++i) page[i] = static_cast<char>(i % 2 == 0 ? '\x01' : 'M');
  raw_page("mixed.bin", page);
  EXPECT_TRUE(identify("sectors 100\nidentify mixed.bin\n"));
  EXPECT_EQ(identification.Disk_Model, "M M M M M M M M M M M M M M M M M M M M");
}

TEST_F(IdentificationTest, HugeGeometryAndLengthDoNotOverflow) {
  EXPECT_TRUE(identify("sectors 100\nbus none\ngeometry 18014398509481984 65535 65535\n"));
  EXPECT_EQ(identification.Drive_Sectors, 100);
  EXPECT_TRUE(identify("sectors 100\nbus none\ngeometry none\nlength 9223372036854775807\n"));
  EXPECT_EQ(identification.Drive_Sectors, 18014398509481983);
}

TEST_F(IdentificationTest, LeavesOneHandleOpen) {
  EXPECT_TRUE(identify("sectors 100\n"));
  headless::desktop.calls.clear();
  OpenDrive(2);
  EXPECT_TRUE(Check_drv(2));
  close_drive();
  EXPECT_THAT(headless::desktop.calls, ::testing::Contains("CloseHandle").Times(4));
}

TEST(IdentifyData, PairsAreExchangedAndAnOddLastOneStays) {
  EXPECT_EQ(SwapBytes("BADCE"), "ABCDE");
  EXPECT_EQ(clean_id(" \x01 ab\xE9"
                     "c\x7F "),
            "ab c\x7F");
}

}  // namespace
