#pragma once

#include <string>

#include "platform/clock.h"

/// Appends the System event log's entries written since `start` to Text1 and the report, with their counts by type as
/// report variables, and adds the number of entries to the exit code. One line says so when the log cannot be asked.
void Query_System_Event_Log(const platform::DateTime& start);

/// `when` as CIM DATETIME text in local time: yyyymmddhhmmss.000000, then the minutes east of UTC with their sign.
std::string WMI_DateTime(const platform::DateTime& when);

/// The present time zone bias in minutes; UTC = local time + bias.
int Get_TZ_Bias();
