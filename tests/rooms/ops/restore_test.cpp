// What a start does with the journals that an earlier program left.

#include "ops/restore.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <utility>

#include "app/handlers.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "journal/journal.h"
#include "journal/places.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using headless::desktop;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::int64_t kSectors = 4096;
constexpr std::size_t kContents = 4096;  // where the former contents begin in a journal

class Restore : public EachSectorSize {
 protected:
  Restore() : pristine_(read_file(write_image("a.img", kSectors))) {}

  static std::string disk_switches(const std::string& directives = "") {
    return disk_switch(0, "image a.img\nserial S1\nmodel M\n" + directives);
  }

  /// A test dies in its first visit, behind the pattern. Its journal and the image stay as they are.
  void interrupt_test() {
    desktop = {};
    behind_first(Phase::writing, [] { desktop.dies_at = desktop.calls_made + 1; });
    EXPECT_THROW(start(disk_switches() + "/D:0 /OP:RANDOMWRITE /COUNT:8"), headless::ProcessDied);
    virtualdisk::detach_all();
    journal.close();
    desktop = {};
    ASSERT_NE(image(), pristine_);
    ASSERT_EQ(journals().size(), 1U);
  }

  /// Calls `what` behind the first transfer of a phase in the next run.
  static void behind_first(Phase phase, void (*what)()) {
    static Phase awaited;
    static void (*then)();
    awaited = phase;
    then = what;
    desktop.at_pump = [](int) {
      measure.on_transfer = [](const Transfer& transfer) {
        if (transfer.phase == awaited && then != nullptr) std::exchange(then, nullptr)();
      };
    };
  }

  static std::uint32_t restore(const std::string& directives = "", const std::string& switches = "") {
    const std::uint32_t code = start(disk_switches(directives) + "/D:0 /OP:RESTORE /SERIAL:S1 " + switches);
    virtualdisk::detach_all();
    return code;
  }

  static std::string image() { return read_file(path("a.img")); }

  /// Changes a byte of a file.
  static void change(const std::string& file, std::size_t at) {
    std::string bytes = read_file(file);
    bytes.at(at) = static_cast<char>(bytes.at(at) ^ 1);
    std::filesystem::remove(file);
    std::FILE* const out = std::fopen(file.c_str(), "wb");
    std::fwrite(bytes.data(), 1, bytes.size(), out);
    std::fclose(out);
  }

  /// The first LBA of the interrupted visit.
  static std::int64_t place() { return read_journal(journals().front()).record.lba; }

  std::string pristine_;
};

TEST_P(Restore, GivesTheFormerContentsBackAndSaysSo) {
  interrupt_test();
  const std::string range = "LBA " + std::to_string(place()) + " to " + std::to_string(place() + 7);
  EXPECT_EQ(restore(), 0U);
  EXPECT_THAT(out(), HasSubstr(range + " of drive 0 (M, serial number S1): 8 of 8 sectors hold the pattern of an "
                                       "interrupted test.\r\n"));
  EXPECT_THAT(out(), HasSubstr("The former contents of 8 sectors were given back and read again. The journal is "
                               "deleted.\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_D_TOTERR=0"));
  EXPECT_EQ(image(), pristine_);
  EXPECT_THAT(journals(), IsEmpty());
  EXPECT_EQ(restore(), 1U) << "there is nothing any more";
  EXPECT_THAT(err(),
              HasSubstr("No journal of this disk was found in \"" + local_data() + "/Sectorix/\": nothing was done."));
}

TEST_P(Restore, TheWindowAsksAndCancelLeavesEverythingAsItIs) {
  interrupt_test();
  const std::string damaged = image();
  desktop.answers = {"CANCEL"};
  open(disk_switches());
  ASSERT_EQ(desktop.boxes.size(), 1U);
  EXPECT_EQ(desktop.boxes[0].title, "INTERRUPTED TEST");
  EXPECT_THAT(desktop.boxes[0].text, HasSubstr("8 of 8 sectors hold the pattern of an interrupted test.\r\n\r\n"
                                               "Give their former contents back from \"" +
                                               journals()[0] + "\"?"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("\r\n\r\nUNDO JOURNALS\r\n=============\r\nJournal \"" + journals()[0]));
  EXPECT_EQ(image(), damaged);

  virtualdisk::detach_all();
  desktop.boxes.clear();
  open(disk_switches() + "/D:0");
  EXPECT_THAT(desktop.boxes, IsEmpty()) << "none is opened at start in command-line mode";
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("8 of 8 sectors hold the pattern of an interrupted test."));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("UNDO JOURNALS"));
  EXPECT_EQ(image(), damaged);
  virtualdisk::detach_all();
  desktop.answers = {"CANCEL"};
  open(disk_switches());

  desktop.answers = {"3", "8", "OK"};
  click(CmdRnd_Click);
  EXPECT_THAT(desktop.boxes.back().text, HasSubstr("An earlier test of a disk of this serial number left the journal"))
      << "first this one";
  EXPECT_EQ(image(), damaged);
  virtualdisk::detach_all();

  desktop.answers = {"OK"};
  open(disk_switches() + disk_switch(3, "sectors 104\n"));
  EXPECT_EQ(image(), pristine_);
  EXPECT_THAT(journals(), IsEmpty());
  EXPECT_EQ(form1.SelectedDrive, 0);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("were given back and read again"));
  EXPECT_FALSE(disk.Sec_Buf.size() > 8 * 512);
}

TEST_P(Restore, AnyBatchTellsWhatIsLeftAndDoesNothing) {
  interrupt_test();
  const std::string damaged = image();
  EXPECT_EQ(start(disk_switches() + "/D:0 /OP:SHOW"), 0U);
  EXPECT_THAT(err(), HasSubstr("8 of 8 sectors hold the pattern of an interrupted test.\r\n"
                               "/D:0 /OP:RESTORE /SERIAL:S1 gives the former contents back.\r\n"));
  virtualdisk::detach_all();
  EXPECT_EQ(start(disk_switches() + "/D:0 /OP:RANDOMWRITE"), 1U);
  EXPECT_THAT(err(),
              HasSubstr("An earlier test of a disk of this serial number left the journal \"" + journals()[0] + "\""));
  EXPECT_EQ(image(), damaged);
}

TEST_P(Restore, OtherDataAreNeverWrittenOver) {
  interrupt_test();
  change(path("a.img"), static_cast<std::size_t>(place() + 3) * 512 + 5);
  const std::string damaged = image();
  const std::string told = "hold neither their former contents nor the test's pattern from LBA " +
                           std::to_string(place() + 3) + " on (1 sectors): nothing is written.";
  EXPECT_EQ(restore(), 1U);
  EXPECT_THAT(err(), HasSubstr(told));
  open(disk_switches());
  EXPECT_THAT(form1.Text1.text(), HasSubstr(told));
  EXPECT_THAT(desktop.boxes, IsEmpty());
  EXPECT_EQ(image(), damaged);
  EXPECT_EQ(journals().size(), 1U);
}

TEST_P(Restore, AJournalThatChangedWritesNothingAndStays) {
  for (const std::size_t at : {std::size_t{3}, std::size_t{30}, std::size_t{4095}, kContents, kContents + 4000}) {
    interrupt_test();
    const std::string damaged = image();
    change(journals()[0], at);
    EXPECT_EQ(restore(), 1U) << at;
    const std::string why = at < 4092 ? "its header is no whole header of a journal" : "its sum is wrong";
    EXPECT_THAT(out() + err(), HasSubstr(why)) << at;
    EXPECT_EQ(image(), damaged) << at;
    ASSERT_EQ(journals().size(), 1U) << at;
    EXPECT_EQ(count_of(err(), "8 sectors hold the test's pattern."), at < 4092 ? 0 : 1) << at;
    std::filesystem::remove(journals()[0]);
    write_image("a.img", kSectors);
  }
  interrupt_test();
  const std::string damaged = image();
  std::filesystem::resize_file(journals()[0], kContents + 512);
  EXPECT_EQ(restore(), 1U);
  EXPECT_THAT(err(), HasSubstr("its sum is wrong"));
  EXPECT_EQ(image(), damaged);
}

TEST_P(Restore, AnotherDiskIsNamedOnceAndLeftAlone) {
  interrupt_test();
  const std::string damaged = image();
  for (const std::string other :
       {"serial S2\nmodel M\n", "serial S1\nmodel N\n", "serial S1\nmodel M\nsectors 4000\n"}) {
    desktop = {};
    EXPECT_EQ(start(disk_switch(0, "image a.img\n" + other) + "/D:0 /OP:SHOW"), 0U);
    virtualdisk::detach_all();
    EXPECT_EQ(count_of(err(), "\": The disk (M, serial number S1) is not there.\r\n"), 1) << other << err();
    EXPECT_EQ(count_of(err(), "\n"), 1);
    EXPECT_EQ(image(), damaged);
  }
  // The same disk twice: it cannot be told which.
  std::filesystem::copy_file(path("a.img"), path("b.img"));
  desktop = {};
  EXPECT_EQ(start(disk_switches() + disk_switch(1, "image b.img\nserial S1\nmodel M\n") + "/D:0 /OP:SHOW"), 0U);
  EXPECT_THAT(err(), HasSubstr("is there more than once: nothing is written."));
}

TEST_P(Restore, ADiskWithoutASerialNumberMayBeAnother) {
  std::filesystem::create_directory(local_data() + "/Sectorix");
  Journal unnamed;
  const std::string file = local_data() + "/Sectorix/sectorix-.journal";
  const std::vector<std::uint8_t> former(512);
  ASSERT_EQ(unnamed.create(file, {.model = "M", .serial = "", .firmware = "", .sectors = 104, .file = ""}, 1), "");
  ASSERT_EQ(unnamed.record(7, former, std::vector<std::uint8_t>{1, 2, 3, 4}), "");
  unnamed.close();
  // An IDENTIFY page (ATA/ATAPI-8, table 29) with a model, its characters swapped in pairs, and no serial number.
  std::string page(512, '\0');
  page.replace(54, 2, " M");
  write_file("identify.bin", page);
  start(disk_switch(0, "sectors 104\nidentify identify.bin\n") + "/D:0 /OP:SHOW");
  EXPECT_THAT(err(), HasSubstr("hold their former contents, but another disk without a serial number may be meant."));
  EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_P(Restore, WhatWasGivenBackAlreadyNeedsNoJournal) {
  interrupt_test();
  write_image("a.img", kSectors);
  EXPECT_EQ(start(disk_switches() + "/D:0 /OP:SHOW"), 0U);
  EXPECT_EQ(err(), "");
  EXPECT_THAT(journals(), IsEmpty());
}

TEST_P(Restore, MayBeInterruptedAtAnyCallAndRunAgain) {
  interrupt_test();
  const std::string damaged = image();
  const std::string file = journals()[0];
  const std::string record = read_file(file);
  EXPECT_EQ(restore(), 0U);
  const std::int64_t calls = desktop.calls_made;
  int deaths = 0;
  for (const std::uint32_t torn : {0U, 512U, 1536U}) {
    for (std::int64_t at = 1; at <= calls; ++at) {
      write_file("a.img", damaged);
      std::filesystem::copy_file(write_file("record", record), file, std::filesystem::copy_options::overwrite_existing);
      desktop = {};
      desktop.dies_at = at;
      desktop.torn_bytes = torn;
      try {
        restore();
      } catch (const headless::ProcessDied&) {
        ++deaths;
      }
      virtualdisk::detach_all();
      desktop = {};
      // Nothing to do is told by 1 where the journal went before the death.
      const bool needed = !journals().empty();
      EXPECT_EQ(restore(), needed ? 0U : 1U) << at;
      EXPECT_EQ(image(), pristine_) << "died at call " << at << ", " << torn << " bytes";
      EXPECT_THAT(journals(), IsEmpty()) << at;
    }
  }
  EXPECT_GT(deaths, 2 * calls);
}

TEST_P(Restore, ADiskThatRefusesOrLiesKeepsItsJournal) {
  for (const std::string fault : {"fail write 0 4096\n", "drop 0 4096\n", "stray 0 4096 100\n"}) {
    interrupt_test();
    desktop = {};
    EXPECT_NE(restore(fault), 0U) << fault;
    EXPECT_THAT(out(), HasSubstr("\" stays.\r\n")) << fault;
    ASSERT_EQ(journals().size(), 1U) << fault;
    EXPECT_EQ(restore(), 0U);
    EXPECT_THAT(journals(), IsEmpty());
    write_image("a.img", kSectors);
  }
}

TEST_P(Restore, TheJournalLiesWhereItIsAskedForAndNeverOnTheDiskUnderTest) {
  std::filesystem::create_directory(path("own"));
  const auto folder_of = [&](const std::string& switches) {
    desktop = {};
    std::string folder;
    desktop.at_pump = [&](int) {
      if (journal.is_open()) folder = std::filesystem::path(journal.file()).parent_path().string();
    };
    EXPECT_EQ(start(disk_switches() + "/D:0 /OP:RANDOMWRITE /PASSES:1 /COUNT:8 " + switches), 0U) << err();
    virtualdisk::detach_all();
    return folder;
  };
  EXPECT_EQ(folder_of(""), local_data() + "/Sectorix");
  EXPECT_EQ(folder_of("/REPORT:" + path("r.txt")) + "/", path(""));
  EXPECT_EQ(folder_of("/REPORT:" + path("r.txt") + "2 /JOURNAL:" + path("own")), path("own"));

  const auto refused = [&](const std::string& switches) {
    desktop = {};
    desktop.current_volume = "x:";
    EXPECT_EQ(start(disk_switches("volume X:\n") + "/D:0 /OP:RANDOMWRITE " + switches), 1U);
    virtualdisk::detach_all();
    return err();
  };
  EXPECT_THAT(refused(""), HasSubstr("Sectorix/\" lies on the disk under test. Nothing was done.\r\n"));
  EXPECT_THAT(refused("/JOURNAL:" + path("own")),
              HasSubstr("own/\" lies on the disk under test. Nothing was done.\r\n"));
  EXPECT_EQ(count_of(err(), "\n"), 1);
  desktop = {};
  EXPECT_EQ(start(disk_switches() + "/D:0 /OP:RANDOMWRITE /JOURNAL:" + path("none")), 1U);
  EXPECT_THAT(err(),
              HasSubstr("cannot be made: error 2 - The system cannot find the file specified. Nothing was done."));
  EXPECT_EQ(image(), pristine_);
}

TEST_P(Restore, AJournalInUseIsLeftToItsTest) {
  const DiskIdentity same{.model = "M", .serial = "S1", .firmware = "", .sectors = kSectors, .file = ""};
  std::filesystem::create_directory(local_data() + "/Sectorix");
  Journal running;
  ASSERT_EQ(running.create(local_data() + "/Sectorix/sectorix-S1.journal", same, 8), "");
  EXPECT_EQ(start(disk_switches() + "/D:0 /OP:RANDOMWRITE"), 1U);
  EXPECT_THAT(err(), HasSubstr("A test of a disk of this serial number is running: its journal is \""));
  virtualdisk::detach_all();
  EXPECT_EQ(restore(), 1U);
  ASSERT_EQ(journals().size(), 1U);
  EXPECT_EQ(running.finish(), "");
  write_file("empty", "");
  std::filesystem::copy_file(path("empty"), local_data() + "/Sectorix/sectorix-S1.journal");
  EXPECT_EQ(start(disk_switches() + "/D:0 /OP:RANDOMWRITE /PASSES:1"), 0U) << "a file of no bytes keeps nothing";
  EXPECT_THAT(journals(), IsEmpty());
}

TEST_P(Restore, TheWindowOffersAFolderAndGoesOnWithoutAJournalOnlyWhenToldTo) {
  ::setenv("LOCALAPPDATA", "", 1);
  open(disk_switches());
  for (const char* last : {"CANCEL", "OK"}) {
    desktop.boxes.clear();
    desktop.answers = {"2", "8", path("none"), "CANCEL", last};
    click(CmdRnd_Click);
    ASSERT_EQ(desktop.boxes.size(), 5U);
    EXPECT_EQ(desktop.boxes[2].title, "UNDO JOURNAL");
    EXPECT_THAT(desktop.boxes[2].text, HasSubstr("The system names no folder for the user's data."));
    EXPECT_THAT(desktop.boxes[3].text, HasSubstr("cannot be made: error 2 - "));
    EXPECT_EQ(desktop.boxes[4].title, "NO UNDO JOURNAL");
    EXPECT_EQ(form1.Text1.text().find("Random disk write") != std::string::npos, std::string(last) == "OK");
  }
  desktop.boxes.clear();
  desktop.answers = {"2", "8", path("")};
  click(CmdRnd_Click);
  EXPECT_EQ(desktop.boxes.size(), 3U);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("Random disk write"));
  EXPECT_EQ(image(), pristine_);
}

TEST_P(Restore, LeavingInTheMiddleTakesTheJournalAlong) {
  for (void (*leave)() : {CmdExit_Click, window_closed}) {
    desktop = {};
    open(disk_switches());
    desktop.answers = {"5", "8"};
    desktop.at_pump = [leave](int pump) {
      if (pump >= 6) leave();
    };
    EXPECT_TRUE(click(CmdRnd_Click));
    EXPECT_THAT(journals(), IsEmpty());
    EXPECT_EQ(image(), pristine_);
    virtualdisk::detach_all();
  }
}

TEST_P(Restore, ATestEndsWithThePlaceThatCannotBeVerified) {
  // Seek, and the read that fails.
  behind_first(Phase::restoring, [] { desktop.fail_first = desktop.fail_last = desktop.calls_made + 2; });
  EXPECT_EQ(start(disk_switches() + "/D:0 /OP:RANDOMWRITE /PASSES:20 /COUNT:8"), 1U);
  EXPECT_THAT(out(), HasSubstr(" were written back, but they could not be read again: error 1117 - "));
  EXPECT_THAT(out(), HasSubstr(" seconds for 8 Read-Fill-Write"));
  EXPECT_THAT(out(), HasSubstr("They are in the file " + journals()[0] + ".\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_D_TOTERR=0"));
  EXPECT_THAT(out(), Not(HasSubstr("Compare error at")));
}

TEST_P(Restore, ACompareErrorSaysWhereAndHowMuch) {
  EXPECT_EQ(start(disk_switches("drop 0 4096\n") + "/D:0 /OP:RANDOMWRITE /PASSES:1 /COUNT:2"), 0U);
  const auto lines = lines_with(out(), "Compare error at LBA ");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_THAT(lines[0], ::testing::MatchesRegex("Compare error at LBA [0-9]+: [0-9]+ bytes differ\\."));
}

ON_EACH_SECTOR_SIZE(Restore);

}  // namespace
