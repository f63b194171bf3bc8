#include "eventlog/event_log.h"

#include <gmock/gmock.h>

#include "form/form1.h"
#include "form/output.h"
#include "tests/support/rig.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class EventLog : public Rig {
 protected:
  static constexpr platform::DateTime kStart{2026, 3, 1, 9, 59, 58};

  static platform::WmiRow event(const std::string& type) {
    return {{"TimeWritten", "20260301095959.123456+060"},
            {"RecordNumber", "17"},
            {"EventCode", "7"},
            {"Category", "0"},
            {"EventType", type},
            {"SourceName", "disk"},
            {"Message", "The device has a bad block."},
            {"Logfile", "System"}};
  }
  static headless::WmiAnswer answer(const std::vector<platform::WmiRow>& rows) {
    return {"SELECT * FROM", rows, false, -1};
  }
};

TEST_F(EventLog, EntriesAreListedAndCountedByType) {
  headless::desktop.wmi_answers = {answer({event("1"), event("2"), event("3"), event("3"), event("4")})};
  Query_System_Event_Log(kStart);
  EXPECT_THAT(
      form1.Text1.text(),
      StartsWith("\r\n\r\nSET QV_E_INFO=2\r\nSET QV_E_WARNINGS=1\r\nSET QV_E_ERRORS=1\r\n"
                 "Time: 3/1/2026 09:59:59\r\nNo: 17\r\nEvent ID: 7\r\nCategory: 0\r\nType: 1\r\nSource: disk\r\n"
                 "Message: The device has a bad block.\r\nLogfile: System\r\nTime: "));
  EXPECT_EQ(output.ExitCode, 5) << "audit entries count there";
}

TEST_F(EventLog, AsksForTheHalfOpenSpanInLocalTime) {
  Query_System_Event_Log(kStart);
  EXPECT_EQ(passed_to("wmi_open").at(0).text, "winmgmts:");
  EXPECT_EQ(passed_to("wmi_query").at(0).numbers[0], 48U) << "return at once, forward only";
  EXPECT_THAT(headless::desktop.wmi_queries,
              ElementsAre("SELECT * FROM Win32_NTLogEvent Where TimeWritten >= '20260301095958.000000+060' and "
                          "TimeWritten < '20260301100000.000000+060' and Logfile='System'"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_E_ERRORS=0\r\nNo system event log events occurred between "
                                            "3/1/2026 09:59:58 and 3/1/2026 10:00:00."));
}

TEST_F(EventLog, OffsetsFollowTheZoneAndItsDaylightTime) {
  headless::desktop.zone_id = 2;
  EXPECT_THAT(WMI_DateTime(kStart), HasSubstr(".000000+120"));
  headless::desktop.zone = {300, 0, -60};
  headless::desktop.zone_id = 1;
  EXPECT_THAT(WMI_DateTime(kStart), HasSubstr(".000000-300"));
  headless::desktop.zone = {0, 0, 0};
  EXPECT_THAT(WMI_DateTime(kStart), HasSubstr(".000000+000"));
}

TEST_F(EventLog, EveryFailureGivesTheLineAndStopsNothing) {
  const std::string line = "\r\nSystem Event Log query failed (no event logging in this OS?)";
  headless::desktop.wmi_absent = true;
  Query_System_Event_Log(kStart);
  EXPECT_EQ(form1.Text1.text(), line);
  headless::desktop.wmi_absent = false;
  headless::desktop.wmi_answers = {answer({event("1"), event("1")})};
  headless::desktop.wmi_answers[0].fails_at_open = true;
  Query_System_Event_Log(kStart);
  EXPECT_EQ(form1.Text1.text(), line + line);
  headless::desktop.wmi_answers[0] = answer({event("1"), event("1")});
  headless::desktop.wmi_answers[0].fails_at_row = 0;
  Query_System_Event_Log(kStart);
  EXPECT_EQ(form1.Text1.text(), line + line + line);
  headless::desktop.wmi_answers[0].fails_at_row = 1;
  Query_System_Event_Log(kStart);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_E_ERRORS=1\r\n")) << "what came is told";
  EXPECT_EQ(count_of(form1.Text1.text(), "query failed"), 4);
}

}  // namespace
