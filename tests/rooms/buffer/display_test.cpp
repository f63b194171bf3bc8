#include "buffer/display.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "app/handlers.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "tests/support/rig.h"
#include "tests/support/tables.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

struct PartitionView : Rig {
  DiskImage image{6000};

  std::string shown(const std::string& more = {}) {
    write_file("disk.img", image.text());
    const std::string file = write_file("disk.vd", "image disk.img\n" + more);
    EXPECT_EQ(start("/VDISK:0=" + file + " /D:0 /OP:SHOW /START:0 /COUNT:1 /QUIET"), 0U);
    return out();
  }

  static auto opened() {
    const std::vector<std::string>& calls = headless::desktop.calls;
    return std::count_if(calls.begin(), calls.end(),
                         [](const std::string& call) { return call.starts_with("CreateFileA"); });
  }
};

TEST_F(PartitionView, ShowsAGuidTableBehindTheFourEntries) {
  image.gpt({{kBasicData, 2048, 4095, "Data"}});
  EXPECT_THAT(
      shown(),
      HasSubstr("START (LBA) = 0 (0)   SIZE (LBA) = 0 (0)\r\n\r\n"
                "GUID PARTITION TABLE (header at LBA 1, revision 1.0)  Disk: 000000D1-0000-0000-0000-000000000000\r\n"
                "ENTRIES = 128 of 128 bytes at LBA 2   USABLE (LBA) = 34 to 5966\r\n"
                "The backup at LBA 5999 says the same.\r\n\r\n"
                "GPT entry 1 (SIZE=0.001GB)  Type: Microsoft basic data  Name: Data\r\n"
                "FIRST (LBA) = 2048 (800)   LAST (LBA) = 4095 (FFF)   SIZE (LBA) = 2048 (800)"));
}

TEST_F(PartitionView, SaysWhatIsDamaged) {
  image.gpt({{kBasicData, 2048, 4095, "Data"}});
  image.at(5999)[0] = 0;
  EXPECT_THAT(shown("fail read 1 1\n"),
              HasSubstr("\r\n\r\nDAMAGED: The GPT header at LBA 1 cannot be read: error 23 - "));
  EXPECT_THAT(out(), HasSubstr("\r\nDAMAGED: The backup header at LBA 5999 is missing: no signature stands there."));
}

TEST_F(PartitionView, ShowsLogicalPartitions) {
  image.mbr_entry(0, 1, 0x05, 100, 2000);
  image.mbr_entry(100, 1, 0x83, 10, 1024);
  EXPECT_THAT(shown(), HasSubstr("\r\n\r\nLogical partition 5 (SIZE=0.000GB)  Type: Linux filesystem\r\n"
                                 "FIRST (LBA) = 110 (6E)   LAST (LBA) = 1133 (46D)   SIZE (LBA) = 1024 (400)"));
}

TEST_F(PartitionView, OpensNothingForAPlainTable) {
  image.mbr_entry(0, 1, 0x07, 64, 800);
  shown();
  const auto plain = opened();
  ASSERT_GT(plain, 0);
  image.mbr_entry(0, 1, 0x05, 64, 800);
  headless::desktop.calls.clear();
  shown();
  EXPECT_EQ(opened(), plain + 1) << "of its own, for what an extended partition holds";
}

/// A drive of `image` and one of long sectors, and what Display shows of the former's first `sectors` sectors while the
/// latter is selected.
struct PartitionViewOfTheBuffer : PartitionView {
  std::string shown_after_read(const std::string& sectors) {
    write_file("disk.img", image.text());
    open(disk_switch(0, "image disk.img\n") + disk_switch(1, "sectors 800\nlogical 4096\n"));
    range("0", sectors);
    click(CmdRead_Click);
    click(Option2_Click);
    headless::desktop.calls.clear();
    click(CmdDisplay_Click);
    EXPECT_THAT(headless::desktop.calls, testing::IsEmpty());
    return form1.Text1.text();
  }
};

TEST_F(PartitionViewOfTheBuffer, CountsInTheSectorsOfTheDriveThatFilledIt) {
  image.mbr_entry(0, 1, 0x07, 64, 800);
  EXPECT_THAT(shown_after_read("1"), HasSubstr("START (LBA) = 64 (40)   SIZE (LBA) = 800 (320)"));
  form1.TxtPattern.set_text("01000000");
  click(CmdFillBuffer_Click);
  click(CmdDisplay_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("START (LBA) = 65536 (10000)   SIZE (LBA) = 65536 (10000)"));
  range("0", "8");
  click(CmdRead_Click);
  click(Option1_Click);
  disk.Sec_Buf.data()[446 + 8] = 64;
  click(CmdDisplay_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("START (LBA) = 512 (200) "));
}

TEST_F(PartitionViewOfTheBuffer, ShowsWhatItHoldsOfAGuidTable) {
  image.gpt({{kBasicData, 2048, 4095, "Data"}});
  EXPECT_THAT(shown_after_read("34"),
              HasSubstr("\r\n\r\nGPT entry 1 (SIZE=0.001GB)  Type: Microsoft basic data  Name: Data\r\n"
                        "FIRST (LBA) = 2048 (800)   LAST (LBA) = 4095 (FFF)   SIZE (LBA) = 2048 (800)\r\n\r\n"
                        "The backup header at LBA 5999 was not checked."));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("DAMAGED")));
  EXPECT_THAT(shown_after_read("3"),
              HasSubstr("Name: Data\r\nFIRST (LBA) = 2048 (800)   LAST (LBA) = 4095 (FFF)   SIZE (LBA) = 2048 (800)"
                        "\r\n\r\nThe GPT entries, LBA 2 to 33, are not all in the buffer. "
                        "Read LBA 0 to 33 to show the whole table here.\r\nThe backup header "));
  EXPECT_THAT(
      shown_after_read("1"),
      EndsWith("START (LBA) = 0 (0)   SIZE (LBA) = 0 (0)\r\n\r\n"
               "The GUID partition table is not in the buffer. Read LBA 0 to 33 to show the whole table here."));
  image.at(2)[0] = 0;
  EXPECT_THAT(shown_after_read("34"), HasSubstr("DAMAGED: The GPT header's entries at LBA 2 have a bad checksum: "));
}

TEST_F(PartitionViewOfTheBuffer, NamesTheSectorThatListsLogicalPartitions) {
  image.mbr_entry(0, 1, 0x05, 100, 2000);
  image.mbr_entry(100, 1, 0x83, 10, 1024);
  EXPECT_THAT(shown_after_read("100"),
              EndsWith("\r\n\r\nThe extended partition table at LBA 100 is not in the buffer. Read LBA 100 to see that "
                       "sector; \"sectorix /D:n /OP:SHOW /START:0\" lists all logical partitions."));
  EXPECT_THAT(shown_after_read("101"),
              EndsWith("FIRST (LBA) = 110 (6E)   LAST (LBA) = 1133 (46D)   SIZE (LBA) = 1024 (400)"));
}

TEST_F(PartitionView, ReadsNoDriveForAFilledBuffer) {
  image.gpt({{kBasicData, 2048, 4095, "Data"}});
  shown();
  form1.TxtPattern.set_text("EEEEEEEE");
  fill_buffer();
  form1.Text1.set_text({});
  headless::desktop.calls.clear();
  show_buffer_for_editing();
  EXPECT_EQ(opened(), 0);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Type: EE"));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("GPT")));
}

}  // namespace
