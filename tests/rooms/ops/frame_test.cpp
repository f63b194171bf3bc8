#include "ops/frame.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>

#include "app/handlers.h"
#include "eventlog/event_log.h"
#include "form/form1.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Frame : public Rig {
 protected:
  /// Presses Sequential READ for two sectors.
  static void read_two_sectors() {
    range("0", "2");
    headless::desktop.calls.clear();
    headless::desktop.passed.clear();
    click(CmdRead_Click);
  }
};

/// The requests of `passed`, the event log's query among them, each by its control code and ATA features.
std::vector<std::string> requests(const std::vector<headless::Call>& passed) {
  std::vector<std::string> found;
  for (const headless::Call& call : passed) {
    char text[32];
    const bool ata = call.in.size() == 32;
    std::snprintf(text, sizeof text, ata ? "%X %02X" : "%X", call.numbers[0], ata ? call.in[4] : 0);
    if (call.name == "DeviceIoControl") found.emplace_back(text);
    if (call.name == "wmi_query") found.emplace_back("event log");
  }
  return found;
}

TEST_F(Frame, OwnRequestsComeBeforeTheSpanOfTheEventLogAndAfterIt) {
  open_on("sectors 1000\nsmart 5 0 1 1 0 0\n");
  read_two_sectors();
  EXPECT_THAT(requests(headless::desktop.passed),
              ElementsAre("7C088 00", "70000", "4D004", "7405C", "2D1400",  // the drive is identified
                          "74080", "7C084 D8", "7C088 D0", "7C088 D1",      // the snapshot before
                          "7C084 DA", "2D1100", "2D1400", "2D1400",         // its health, its temperature
                          "74080", "7C084 D8", "7C088 D0", "7C088 D1",      // the snapshot after
                          "event log", "7C084 DA", "2D1100", "2D1400"));
}

TEST_F(Frame, TheSpanOfTheEventLogIsThatOfTheRun) {
  open_on("sectors 1000\nsmart 5 0 1 1 0 0\nrequests 1000\nslow 0 1 5000\n");
  const platform::DateTime pressed = headless::desktop.now;
  read_two_sectors();
  const std::vector<std::string>& calls = headless::desktop.calls;
  const auto first_read = std::find(calls.begin(), calls.end(), "ReadFile");
  // Each request takes a second, the read five.
  const std::int64_t started = std::count(calls.begin(), first_read, "DeviceIoControl");
  constexpr std::int64_t kReadAndSnapshot = 5 + 4;
  ASSERT_EQ(headless::desktop.wmi_queries.size(), 1U);
  EXPECT_THAT(headless::desktop.wmi_queries[0],
              HasSubstr("TimeWritten >= '" + WMI_DateTime(headless::later(pressed, started)) + "' and TimeWritten < '" +
                        WMI_DateTime(headless::later(pressed, started + kReadAndSnapshot)) + "'"));
}

TEST_F(Frame, AMissingDriveLeavesTheProgressInTheStatus) {
  open("");
  range("0", "5");
  click(CmdRead_Click);
  EXPECT_THAT(form1.TxtStatus.text(), StartsWith("5 sectors in 0.0s  (100%)"));
}

}  // namespace
