// Each system call of a small run fails in turn, once and from there on: every run ends with a true report, no handle
// left open, and the image as it was unless the run was to write it.

#include <gmock/gmock.h>

#include <deque>
#include <filesystem>
#include <limits>
#include <string>

#include "app/handlers.h"
#include "disk/counters.h"
#include "form/form1.h"
#include "ops/operations.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

struct Scenario {
  const char* name;
  const char* switches;
  bool writes;
  void (*button)() = nullptr;  // pressed once the window is there
  std::deque<std::string> answers = {};
};

void PrintTo(const Scenario& scenario, std::ostream* to) {
  *to << scenario.name;
}

class FaultLoop : public Rig, public ::testing::WithParamInterface<Scenario> {
 protected:
  FaultLoop() {
    write_image("a.img", 64);
    write_file("d.vd", "image a.img\nserial S\nsmart 5 0x33 100 100 36 0\nsmart 9 0x32 99 99 0 12\nvolume X:\n");
    image_ = read_file(path("a.img"));
    // Rescue files go where the program is.
    std::filesystem::current_path(path(""));
  }
  ~FaultLoop() override { std::filesystem::current_path(before_); }

  std::uint32_t run_failing(std::int64_t first, std::int64_t last) {
    headless::desktop = {};
    headless::desktop.fail_first = first;
    headless::desktop.fail_last = last;
    headless::desktop.has_display = GetParam().button != nullptr;
    headless::desktop.answers = GetParam().answers;
    // Where the window asks before it writes, it tells in boxes too.
    if (*GetParam().switches == '\0') headless::desktop.otherwise = "OK";
    const std::uint32_t code = start("/VDISK:0=" + path("d.vd") + " " + GetParam().switches);
    if (GetParam().button != nullptr && code == 0) {
      click(GetParam().button);
      EXPECT_TRUE(click(CmdExit_Click)) << "call " << first << " to " << last;
    }
    EXPECT_EQ(virtualdisk::open_handles(), 0) << "call " << first << " to " << last;
    virtualdisk::detach_all();
    EXPECT_EQ(headless::desktop.open_files, 0) << "call " << first << " to " << last;
    return code;
  }

  /// What the report says must be what was counted, and what a caller gets.
  static void expect_true_report(std::int64_t first) {
    const int errors = count_of(form1.Text1.text(), "\r\nERROR: ") + (form1.Text1.text().find("ERROR: ") == 0 ? 1 : 0);
    EXPECT_EQ(errors, counters.TotalErrors) << "call " << first;
    if (out().find("SET QV_D_TOTERR=") == std::string::npos) return;
    EXPECT_NE(out().find("SET QV_D_TOTERR=" + std::to_string(counters.TotalErrors) + "\r\n"), std::string::npos);
  }

  std::string image_;
  std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_P(FaultLoop, EndsWithATrueReportWhicheverCallFails) {
  run_failing(0, 0);
  const std::int64_t calls = headless::desktop.calls_made;
  ASSERT_GT(calls, 10);
  write_image("a.img", 64);
  for (std::int64_t failing = 1; failing <= calls; ++failing) {
    for (const std::int64_t last : {failing, std::numeric_limits<std::int64_t>::max()}) {
      run_failing(failing, last);
      expect_true_report(failing);
      if (read_file(path("a.img")) == image_) continue;
      // What a non-destructive test could not give back it tells.
      const bool told = count_of(err(), "could not be written back") > 0;
      EXPECT_TRUE(GetParam().writes || told) << "call " << failing;
      write_image("a.img", 64);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Runs, FaultLoop,
    ::testing::Values(Scenario{"Read", "/D:0 /OP:READ", false},
                      Scenario{"Write", "/D:0 /OP:WRITE /SERIAL:S /START:3 /COUNT:2", true},
                      Scenario{"Verify", "/D:0 /OP:VERIFY /START:3 /COUNT:2", false},
                      Scenario{"RandomRead", "/D:0 /OP:RANDOMREAD /PASSES:2 /COUNT:4", false},
                      Scenario{"Search", "/D:0 /OP:SEARCH /FIND:t33", false}, Scenario{"Show", "/D:0 /OP:SHOW", false},
                      Scenario{"Smart", "/D:0 /OP:SMART", false}, Scenario{"List", "/LIST", false},
                      Scenario{"RandomWrite", "/D:0 /OP:RANDOMWRITE /SERIAL:S /PASSES:2 /COUNT:4", false},
                      Scenario{"ReadButton", "/D:0", false, CmdRead_Click},
                      Scenario{"SearchButton", "/D:0", false, CmdFind_Click, {"t33"}},
                      Scenario{"WriteButton", "/D:0", true, CmdWrite_Click, {"OK"}},
                      Scenario{"WriteAndReadBackButton", "", true, CmdWrite_Click, {"OK TICKED"}},
                      Scenario{"DestructiveButton", "/D:0", true, Cmd_Destructive_Random_Write, {"OK", "2", "4"}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
