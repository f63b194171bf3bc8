// The promise of the non-destructive tests: whatever happens to a run, the disk is afterwards what it was before.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <set>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/measure.h"
#include "ops/operations.h"
#include "ops/visit.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::HasSubstr;

struct WriteTest {
  const char* name;
  void (*button)();
  std::vector<std::string> answers;  // behind the number of passes
  std::int64_t disk_sectors;
  std::int64_t sectors;      // of a visit
  std::int64_t transferred;  // sectors a pass
  std::int64_t around;       // sectors on each side of a visit that hold something too
};

void PrintTo(const WriteTest& test, std::ostream* to) {
  *to << test.name;
}

/// The sectors that hold anything, by their LBA.
using Contents = std::map<std::int64_t, std::string>;

class NothingLost : public Rig, public ::testing::WithParamInterface<WriteTest> {
 protected:
  NothingLost() {
    std::ofstream(path("a.img")).close();
    std::filesystem::resize_file(path("a.img"), static_cast<std::uintmax_t>(GetParam().disk_sectors) * 512);
    fill_visited_places();
    contents_ = contents();
  }

  /// A run of `passes` passes on the image.
  void visit(int passes, const std::string& directives = "", void (*told)(const Transfer&) = nullptr) {
    open_on("image a.img\n" + directives);
    headless::desktop.answers = {std::to_string(passes)};
    for (const std::string& answer : GetParam().answers) headless::desktop.answers.push_back(answer);
    headless::desktop.pumps = 0;
    headless::desktop.calls_made = 0;
    measure.on_transfer = told;
    click(GetParam().button);
    virtualdisk::detach_all();
  }

  bool image_is_whole() { return contents() == contents_; }

  /// Puts the places that the report's last lines name back as they were, and gives their number. What was saved of
  /// them must be what they held.
  int restore_lost_places() {
    const std::string sectors = std::to_string(GetParam().sectors);
    std::set<std::int64_t> places;
    for (const std::string& line :
         lines_with(form1.Text1.text(), "Former contents of " + sectors + " sectors at LBA ")) {
      const std::int64_t lba = std::stoll(line.substr(line.find("LBA ") + 4));
      std::string former;
      for (std::int64_t i = 0; i < GetParam().sectors; ++i) former += contents_.at(lba + i);
      const std::size_t named = line.find("in the file ");
      if (named != std::string::npos && places.count(lba) == 0) {
        const std::string file = line.substr(named + 12, line.size() - named - 13);
        EXPECT_EQ(read_file(file), former) << file;
        std::remove(file.c_str());
      }
      places.insert(lba);
      write_at(lba, former);
    }
    return static_cast<int>(places.size());
  }

 private:
  void write_at(std::int64_t lba, const std::string& bytes) {
    std::fstream image(path("a.img"), std::ios::binary | std::ios::in | std::ios::out);
    image.seekp(lba * 512).write(bytes.data(), std::ssize(bytes));
  }

  /// Numbers the sectors that the runs of a test are going to write to, and those around them: every program draws the
  /// same places.
  void fill_visited_places() {
    static std::set<std::int64_t> written;
    written.clear();
    visit(50, "", [](const Transfer& transfer) {
      if (writes(transfer.phase)) written.insert(transfer.lba);
    });
    ASSERT_GT(written.size(), 40U);
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

  /// Reads the parts of the sparse image that exist.
  Contents contents() {
    Contents found;
    const int image = ::open(path("a.img").c_str(), O_RDONLY);
    const std::string zeros(512, '\0');
    std::string sector(512, '\0');
    for (off_t at = 0; (at = ::lseek(image, at, SEEK_DATA)) >= 0;) {
      const off_t hole = ::lseek(image, at, SEEK_HOLE);
      for (; at < hole && ::pread(image, sector.data(), 512, at) == 512; at += 512) {
        if (sector != zeros) found[at / 512] = sector;
      }
    }
    ::close(image);
    return found;
  }

  Contents contents_;
};

TEST_P(NothingLost, AfterFiftyPassesTheDiskIsWhatItWas) {
  visit(50);
  EXPECT_TRUE(image_is_whole());
  EXPECT_EQ(counters.Sectors_Done, 50 * GetParam().transferred);
  EXPECT_EQ(counters.TotalErrors, 0);
  EXPECT_EQ(counters.TotalCErrors, 0);
}

TEST_P(NothingLost, EveryInterruptionAtEveryPumpLeavesTheDiskWhole) {
  const std::vector<std::pair<const char*, std::function<void()>>> interruptions = {
      {"Cancel", cmdCancel_Click},
      {"Exit", CmdExit_Click},
      {"closing", window_closed},
      {"another drive", Option3_Click},
      {"Control-C", headless::press_control_c},
      {"a closing console", headless::close_console}};
  for (const auto& [name, interrupt] : interruptions) {
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
      places_lost += restore_lost_places();
      EXPECT_TRUE(image_is_whole()) << "call " << failing << (last == failing ? " once" : " and all after it");
    }
  }
  EXPECT_GT(places_lost, 0) << "a failing write-back was among them";
}

TEST_P(NothingLost, AVanishingDriveLosesAtMostItsLastPlace) {
  for (int transfers = 0; transfers <= 12; ++transfers) {
    visit(3, "vanish " + std::to_string(transfers) + "\n");
    EXPECT_LE(restore_lost_places(), 1) << transfers;
    EXPECT_TRUE(image_is_whole()) << transfers;
  }
}

TEST_P(NothingLost, WhatTheSystemRefusedToWriteNeedsNoFile) {
  for (const auto& [directive, code] :
       {std::pair{"readonly\n", "error 19 - "}, std::pair{"fail write 0 409600 5\n", "error 5 - "}}) {
    visit(3, directive);
    EXPECT_TRUE(image_is_whole());
    EXPECT_EQ(counters.TotalErrors, 6);
    const auto told = lines_with(form1.Text1.text(), "Former contents of ");
    ASSERT_EQ(told.size(), 6U) << "each at once and at the end";
    for (const std::string& line : told)
      EXPECT_THAT(line, HasSubstr(std::string("Nothing was written over them: ") + code));
  }
}

TEST_P(NothingLost, AReadIsGivenUpBeforeAVisitWritesAndNeverInIt) {
  headless::desktop.at_pump = [](int pump) { headless::desktop.gives_up_reads = pump >= 2; };
  visit(5, "slow 0 " + std::to_string(GetParam().disk_sectors) + " 100\n");
  EXPECT_TRUE(image_is_whole());
  EXPECT_EQ(measure.done, GetParam().transferred) << "one visit was made whole, the next one's first read given up";
  EXPECT_THAT(form1.Text1.text(), testing::Not(HasSubstr("ERROR:")));
  EXPECT_THAT(form1.Text1.text(), testing::Not(HasSubstr("could not be")));
}

INSTANTIATE_TEST_SUITE_P(Tests, NothingLost,
                         ::testing::Values(WriteTest{"RandomWrite", CmdRnd_Click, {"8"}, 4096, 8, 32, 4096},
                                           WriteTest{"OffTrack", Cmd_OffTrack_Write, {}, 409600, 30, 92, 100}),
                         [](const auto& info) { return info.param.name; });

}  // namespace
