// The promise of the non-destructive tests: whatever happens to a run, the disk is afterwards what it was before.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <set>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "journal/journal.h"
#include "measure/measure.h"
#include "ops/operations.h"
#include "ops/visit.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct WriteTest {
  const char* name;
  void (*button)();
  std::vector<std::string> answers;  // behind the number of passes
  std::int64_t disk_sectors;
  std::int64_t sectors;      // of a visit
  std::int64_t transferred;  // sectors a pass
  std::int64_t around;       // sectors on each side of a visit that hold something too
  bool has_pattern;          // writes something else than the former contents
  int logical;               // bytes of the disk's logical sectors
};

void PrintTo(const WriteTest& test, std::ostream* to) {
  *to << test.name;
}

class NothingLost : public Rig, public ::testing::WithParamInterface<WriteTest> {
 protected:
  NothingLost() {
    logical = GetParam().logical;
    for (const char* const image : {"a.img", "former.img"}) {
      std::ofstream(path(image)).close();
      std::filesystem::resize_file(path(image), static_cast<std::uintmax_t>(GetParam().disk_sectors) * 512);
    }
  }

  ~NothingLost() override { logical = 512; }

  /// A run of `passes` passes on the image.
  void visit(int passes, const std::string& directives = "", void (*told)(const Transfer&) = nullptr) {
    open_on("image a.img\n" + directives);
    headless::desktop.otherwise = "CANCEL";
    headless::desktop.answers = {std::to_string(passes)};
    for (const std::string& answer : GetParam().answers) headless::desktop.answers.push_back(answer);
    headless::desktop.pumps = 0;
    headless::desktop.calls_made = 0;
    measure.on_transfer = told;
    click(GetParam().button);
    virtualdisk::detach_all();
  }

  /// Compares the image with the one that only the test writes to, where the sparse image exists.
  bool image_is_whole() {
    static std::array<std::string, 2> extents;  // used again: the tests look thousands of times
    const std::array<int, 2> images = {::open(path("a.img").c_str(), O_RDONLY),
                                       ::open(path("former.img").c_str(), O_RDONLY)};
    bool whole = true;
    for (off_t at = 0; (at = ::lseek(images[0], at, SEEK_DATA)) >= 0;) {
      const off_t hole = ::lseek(images[0], at, SEEK_HOLE);
      for (std::size_t i = 0; i < images.size(); ++i) {
        extents[i].resize(hole - at);
        EXPECT_EQ(::pread(images[i], extents[i].data(), extents[i].size(), at), std::ssize(extents[i]));
      }
      whole = whole && extents[0] == extents[1];
      at = hole;
    }
    for (const int image : images) ::close(image);
    return whole;
  }

  /// Starts the program anew, which gives back what the run left in a journal. Gives the number of places that the
  /// report named.
  int restore_lost_places() {
    const std::string start_of_line = "Former contents of " + std::to_string(GetParam().sectors) + " sectors at LBA ";
    std::set<std::string> told;
    for (const std::string& line : lines_with(form1.Text1.text(), start_of_line)) told.insert(line);
    EXPECT_TRUE(image_is_whole() || !told.empty()) << "a place is lost and not named";
    if (!journals().empty()) {
      headless::desktop = {};
      EXPECT_EQ(start(disk_switch(0, "image a.img\n") + "/D:0 /OP:RESTORE /SERIAL:d0vd"), 0U) << err();
      virtualdisk::detach_all();
    }
    EXPECT_THAT(journals(), testing::IsEmpty());
    return static_cast<int>(told.size());
  }

  /// Numbers the sectors that runs of `passes` passes write to, and those around them: every program draws the same
  /// places. A test begins with it.
  void fill_visited_places(int passes) {
    static std::set<std::int64_t> written;
    written.clear();
    visit(passes, "", [](const Transfer& transfer) {
      if (writes(transfer.phase)) written.insert(transfer.lba);
    });
    ASSERT_GE(std::ssize(written), passes - passes / 10) << "some are drawn twice";
    for (const std::int64_t lba : written) {
      const std::int64_t first = std::max<std::int64_t>(lba - GetParam().around, 0);
      const std::int64_t end = std::min(lba + GetParam().sectors + GetParam().around, GetParam().disk_sectors);
      std::string sectors;
      for (std::int64_t i = first; i < end; ++i) {
        std::string sector = "LBA " + std::to_string(i);
        sector.resize(512, '.');
        sectors += sector;
      }
      write_at(first, sectors);
    }
  }

 private:
  void write_at(std::int64_t lba, const std::string& bytes) {
    for (const char* const name : {"a.img", "former.img"}) {
      std::fstream image(path(name), std::ios::binary | std::ios::in | std::ios::out);
      image.seekp(lba * 512).write(bytes.data(), std::ssize(bytes));
    }
  }
};

TEST_P(NothingLost, AfterFiftyPassesTheDiskIsWhatItWas) {
  fill_visited_places(50);
  visit(50);
  EXPECT_TRUE(image_is_whole());
  EXPECT_EQ(counters.Sectors_Done, 50 * GetParam().transferred);
  EXPECT_EQ(counters.TotalErrors, 0);
  EXPECT_EQ(counters.TotalCErrors, 0);
}

TEST_P(NothingLost, EveryInterruptionAtEveryPumpLeavesTheDiskWhole) {
  fill_visited_places(3);
  const std::vector<std::pair<const char*, std::function<void()>>> interruptions = {
      {"Cancel", cmdCancel_Click},
      {"Exit", CmdExit_Click},
      {"closing", window_closed},
      {"another drive", Option3_Click},
      {"Control-C", headless::press_control_c},
      {"a closing console", headless::close_console}};
  for (const auto& [name, action] : interruptions) {
    const std::function<void()>& interrupt = action;
    int pumps = 1;
    for (int at = 1; at <= pumps; ++at) {
      headless::desktop = {};
      headless::desktop.at_pump = [&, at](int pump) {
        if (pump == at) {
          EXPECT_FALSE(headless::desktop.held) << "events wait while the disk holds other data";
          interrupt();
        }
      };
      visit(3);
      EXPECT_TRUE(image_is_whole()) << name << " at pump " << at;
      pumps = std::max(pumps, headless::desktop.pumps);
    }
    EXPECT_GE(pumps, 1) << name;
  }
}

TEST_P(NothingLost, AnySystemCallMayFailOnceOrForGoodAndTheReportNamesWhatIsLost) {
  fill_visited_places(3);
  visit(3);
  const std::int64_t calls = headless::desktop.calls_made;
  ASSERT_GT(calls, 60);
  int places_lost = 0;
  for (std::int64_t failing = 1; failing <= calls; ++failing) {
    for (const std::int64_t last : {failing, std::numeric_limits<std::int64_t>::max()}) {
      headless::desktop = {};
      headless::desktop.at_pump = [failing, last](int pump) {
        if (pump != 1) return;
        headless::desktop.fail_first = failing;
        headless::desktop.fail_last = last;
      };
      visit(3);
      if (!image_is_whole()) ++places_lost;
      restore_lost_places();
      EXPECT_TRUE(image_is_whole()) << "call " << failing << (last == failing ? " once" : " and all after it");
    }
  }
  EXPECT_EQ(places_lost > 0, GetParam().has_pattern) << "a journal was needed";
}

TEST_P(NothingLost, AVanishingDriveLosesAtMostItsLastPlace) {
  fill_visited_places(3);
  for (int transfers = 0; transfers <= 12; ++transfers) {
    visit(3, "vanish " + std::to_string(transfers) + "\n");
    EXPECT_LE(restore_lost_places(), 1) << transfers;
    EXPECT_TRUE(image_is_whole()) << transfers;
  }
}

TEST_P(NothingLost, WhatTheSystemRefusedToWriteNeedsNoFile) {
  fill_visited_places(3);
  for (const auto& [directive, code] :
       {std::pair{"readonly\n", "error 19 - "}, std::pair{"fail write 0 409600 5\n", "error 5 - "}}) {
    headless::desktop.err.clear();
    visit(3, directive);
    EXPECT_TRUE(image_is_whole());
    EXPECT_EQ(counters.TotalErrors, 2) << "the first place ends the test";
    const auto told = lines_with(form1.Text1.text(), "Former contents of ");
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(form1.TxtStatus.text(), StartsWith("Former contents of "));
    EXPECT_EQ(count_of(headless::desktop.err, "Former contents of "), 1) << "immediately";
    EXPECT_THAT(journals(), testing::IsEmpty());
    for (const std::string& line : told)
      EXPECT_THAT(line, HasSubstr(std::string("Nothing was written over them: ") + code));
  }
}

TEST_P(NothingLost, ADeathAtAnyCallIsMadeGoodByTheNextStart) {
  fill_visited_places(3);
  visit(3);
  const std::int64_t calls = headless::desktop.calls_made;
  int dirty = 0;
  int deaths = 0;
  for (const std::uint32_t torn : {0U, 512U, 2048U}) {
    for (std::int64_t at = 1; at <= calls; ++at) {
      headless::desktop = {};
      headless::desktop.at_pump = [at, torn](int pump) {
        if (pump != 1) return;
        headless::desktop.dies_at = at;
        headless::desktop.torn_bytes = torn;
      };
      try {
        visit(3);
      } catch (const headless::ProcessDied&) {
        ++deaths;
      }
      virtualdisk::detach_all();
      journal.close();
      const bool was_whole = image_is_whole();
      if (!was_whole) ++dirty;
      headless::desktop = {};
      const std::uint32_t code = start(disk_switch(0, "image a.img\n") + "/D:0 /OP:RESTORE /SERIAL:d0vd");
      virtualdisk::detach_all();
      EXPECT_TRUE(image_is_whole()) << "died at call " << at << ", " << torn << " bytes";
      // A journal that was not whole yet stays: it says that the disk was not touched.
      EXPECT_TRUE(code == 0 || was_whole) << at;
      for (const std::string& left : journals()) std::filesystem::remove(left);
    }
  }
  const int least = GetParam().has_pattern ? 3 * 3 * 3 : 0;
  EXPECT_GT(deaths, 2 * calls);
  EXPECT_GE(dirty, least) << "three places, each held the pattern for several calls";
}

TEST_P(NothingLost, AReadIsGivenUpBeforeAVisitWritesAndNeverInIt) {
  fill_visited_places(5);
  headless::desktop.at_pump = [](int pump) { headless::desktop.gives_up_reads = pump >= 2; };
  visit(5, "slow 0 " + std::to_string(GetParam().disk_sectors) + " 100\n");
  EXPECT_TRUE(image_is_whole());
  EXPECT_EQ(measure.done, GetParam().transferred) << "one visit was made whole, the next one's first read given up";
  EXPECT_THAT(form1.Text1.text(), testing::Not(HasSubstr("ERROR:")));
  EXPECT_THAT(form1.Text1.text(), testing::Not(HasSubstr("could not be")));
}

// Neither 13 nor 30 sectors are whole ones of 4096 bytes.
INSTANTIATE_TEST_SUITE_P(
    Tests, NothingLost,
    ::testing::Values(WriteTest{"RandomWrite", CmdRnd_Click, {"8"}, 4096, 8, 32, 4096, true, 512},
                      WriteTest{"RandomWriteOf4096", CmdRnd_Click, {"13"}, 4096, 13, 52, 4096, true, 4096},
                      WriteTest{"OffTrack", Cmd_OffTrack_Write, {}, 409600, 30, 92, 100, false, 512},
                      WriteTest{"OffTrackOf4096", Cmd_OffTrack_Write, {}, 409600, 30, 92, 100, false, 4096}),
    [](const auto& info) { return info.param.name; });

}  // namespace
