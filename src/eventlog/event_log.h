#pragma once

#include <string>
#include <vector>

#include "platform/clock.h"

/// One entry of the System log, texts as the management service gives them.
struct LoggedEvent {
  platform::DateTime time;  // local
  std::string record;
  std::string event_id;
  std::string category;
  std::string type;  // 1 error, 2 warning, 3 information, 4 and 5 audits
  std::string source;
  std::string message;
  std::string logfile;
};

/// What the last query found.
struct EventLog {
  std::vector<LoggedEvent> entries;
  bool complete = false;  // false: the log could not be asked, or broke off
};

inline EventLog event_log;

/// Appends the System event log's entries written since `start` to Text1 and the report, with their counts by type as
/// report variables, and adds the number of entries to the exit code. One line says so when the log cannot be asked.
void Query_System_Event_Log(const platform::DateTime& start);

/// `when` as CIM DATETIME text in local time: yyyymmddhhmmss.000000, then the minutes east of UTC with their sign.
std::string WMI_DateTime(const platform::DateTime& when);

/// The present time zone bias in minutes; UTC = local time + bias.
int Get_TZ_Bias();
