// The promise of the non-destructive test: whatever happens to a run, the disk is afterwards what it was before.

#include <gmock/gmock.h>

#include <fstream>
#include <functional>
#include <set>

#include "app/handlers.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/run.h"
#include "ops/visit.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

using ::testing::HasSubstr;

class NothingLost : public Rig {
 protected:
  NothingLost() {
    write_image("a.img", 4096);
    image_ = read_file(path("a.img"));
  }

  /// A run of `passes` visits of 8 sectors on the image.
  void visit(int passes, const std::string& directives = "") {
    open("/VDISK:0=" + write_file("d.vd", "image a.img\n" + directives));
    headless::desktop.answers = {std::to_string(passes), "8"};
    headless::desktop.pumps = 0;
    headless::desktop.calls_made = 0;
    click(CmdRnd_Click);
    virtualdisk::detach_all();
  }

  bool image_is_whole() { return read_file(path("a.img")) == image_; }

  /// Puts the places that the report's last lines name back as they were, and gives their number. What was saved of
  /// them must be what they held.
  int restore_lost_places() {
    std::set<std::int64_t> places;
    for (const std::string& line : lines_with(form1.Text1.text(), "Former contents of 8 sectors at LBA ")) {
      const std::int64_t lba = std::stoll(line.substr(line.find("LBA ") + 4));
      const std::string former = image_.substr(static_cast<std::size_t>(lba * 512), 8 * 512);
      const std::size_t named = line.find("in the file ");
      if (named != std::string::npos && places.count(lba) == 0) {
        const std::string file = line.substr(named + 12, line.size() - named - 13);
        EXPECT_EQ(read_file(file), former) << file;
        std::remove(file.c_str());
      }
      places.insert(lba);
      std::fstream image(path("a.img"), std::ios::binary | std::ios::in | std::ios::out);
      image.seekp(lba * 512).write(former.data(), std::ssize(former));
    }
    return static_cast<int>(places.size());
  }

  std::string image_;
};

TEST_F(NothingLost, AfterFiftyPassesTheDiskIsWhatItWas) {
  visit(50);
  EXPECT_TRUE(image_is_whole());
  EXPECT_EQ(counters.Sectors_Done, 50 * 4 * 8);
  EXPECT_EQ(counters.TotalCErrors, 0);
}

TEST_F(NothingLost, EveryInterruptionAtEveryPumpLeavesTheDiskWhole) {
  const std::vector<std::pair<const char*, std::function<void()>>> interruptions = {
      {"Cancel", cmdCancel_Click},
      {"Exit", CmdExit_Click},
      {"closing", Form_Unload},
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

TEST_F(NothingLost, AnySystemCallMayFailOnceOrForGoodAndTheReportNamesWhatIsLost) {
  visit(3);
  const std::int64_t calls = headless::desktop.calls_made;
  ASSERT_GT(calls, 60);
  int places_lost = 0;
  for (std::int64_t failing = 1; failing <= calls; ++failing) {
    for (const std::int64_t last : {failing, std::int64_t{INT64_MAX}}) {
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

TEST_F(NothingLost, AVanishingDriveLosesAtMostItsLastPlace) {
  for (int transfers = 0; transfers <= 12; ++transfers) {
    visit(3, "vanish " + std::to_string(transfers) + "\n");
    EXPECT_LE(restore_lost_places(), 1) << transfers;
    EXPECT_TRUE(image_is_whole()) << transfers;
  }
}

}  // namespace
