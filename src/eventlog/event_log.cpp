#include "eventlog/event_log.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "device/kernel32.h"
#include "device/wmi.h"
#include "form/form1.h"
#include "form/output.h"

namespace {

/// The entries of a time span: their listing and their counts.
struct Events {
  std::string listing;
  int listed = 0;
  int information = 0;
  int warnings = 0;
  int errors = 0;
  bool complete = false;  // false: the log could not be asked, or broke off
};

const std::vector<std::string>& properties() {
  static const std::vector<std::string> names = {"TimeWritten", "RecordNumber", "EventCode", "Category",
                                                 "EventType",   "SourceName",   "Message",   "Logfile"};
  return names;
}

int digits_at(std::string_view text, std::size_t at, std::size_t length) {
  int value = 0;
  if (at + length <= text.size()) std::from_chars(text.data() + at, text.data() + at + length, value);
  return value;
}

/// A CIM DATETIME's local date and time; fraction and offset are left out.
platform::DateTime local_time_in(std::string_view text) {
  return {digits_at(text, 0, 4), digits_at(text, 4, 2),  digits_at(text, 6, 2),
          digits_at(text, 8, 2), digits_at(text, 10, 2), digits_at(text, 12, 2)};
}

void add_event(wmi::WmiRow& row, Events* events) {
  event_log.entries.push_back({local_time_in(row["TimeWritten"]), row["RecordNumber"], row["EventCode"],
                               row["Category"], row["EventType"], row["SourceName"], row["Message"], row["Logfile"]});
  events->listing += "Time: " + platform::default_form(local_time_in(row["TimeWritten"])) + "\r\n";
  events->listing += "No: " + row["RecordNumber"] + "\r\n";
  events->listing += "Event ID: " + row["EventCode"] + "\r\n";
  events->listing += "Category: " + row["Category"] + "\r\n";
  events->listing += "Type: " + row["EventType"] + "\r\n";
  events->listing += "Source: " + row["SourceName"] + "\r\n";
  events->listing += "Message: " + row["Message"] + "\r\n";
  events->listing += "Logfile: " + row["Logfile"] + "\r\n";
  ++events->listed;
  // EventType of Win32_NTLogEvent; the audit types 4 and 5 are listed and not counted.
  if (row["EventType"] == "3") ++events->information;
  if (row["EventType"] == "2") ++events->warnings;
  if (row["EventType"] == "1") ++events->errors;
}

Events ask_log(const platform::DateTime& start, const platform::DateTime& now) {
  Events events;
  const wmi::WmiHandle service = wmi::open("winmgmts:");
  if (service == wmi::kNoWmi) return events;
  constexpr std::uint32_t kReturnAtOnceForwardOnly = 48;
  const wmi::WmiHandle rows = wmi::query(service,
                                         "SELECT * FROM Win32_NTLogEvent Where TimeWritten >= '" + WMI_DateTime(start) +
                                             "' and TimeWritten < '" + WMI_DateTime(now) + "' and Logfile='System'",
                                         kReturnAtOnceForwardOnly);
  if (rows != wmi::kNoWmi) {
    wmi::WmiRow row;
    wmi::WmiNext next = wmi::WmiNext::row;
    while ((next = wmi::next(rows, properties(), &row)) == wmi::WmiNext::row) add_event(row, &events);
    events.complete = next == wmi::WmiNext::end;
    wmi::close(rows);
  }
  wmi::close(service);
  return events;
}

}  // namespace

int Get_TZ_Bias() {
  constexpr std::uint32_t kDaylightTime = 2;  // TIME_ZONE_ID_DAYLIGHT
  kernel32::TimeZone zone;
  const std::uint32_t id = kernel32::GetTimeZoneInformation(&zone);
  return zone.bias + (id == kDaylightTime ? zone.daylight_bias : zone.standard_bias);
}

std::string WMI_DateTime(const platform::DateTime& when) {
  const int offset = -Get_TZ_Bias();
  std::array<char, 128> text{};
  std::snprintf(text.data(), text.size(), "%04d%02d%02d%02d%02d%02d.000000%c%03d", when.year, when.month, when.day,
                when.hour, when.minute, when.second, offset < 0 ? '-' : '+', std::abs(offset));
  return text.data();
}

void Query_System_Event_Log(const platform::DateTime& start) {
  const platform::DateTime now = platform::local_time();
  event_log = {};
  const Events events = ask_log(start, now);
  event_log.complete = events.complete;
  if (events.complete || events.listed > 0) {
    const std::string variables = "\r\n\r\nSET QV_E_INFO=" + std::to_string(events.information) +
                                  "\r\nSET QV_E_WARNINGS=" + std::to_string(events.warnings) +
                                  "\r\nSET QV_E_ERRORS=" + std::to_string(events.errors) + "\r\n";
    AppendReportVars(variables);
    form1.Text1.append(variables);
    report_and_show(events.listed > 0 ? events.listing
                                      : "No system event log events occurred between " + platform::default_form(start) +
                                            " and " + platform::default_form(now) + ".");
    add_to_exit_code(events.listed);
  }
  if (!events.complete) report_and_show("\r\nSystem Event Log query failed (no event logging in this OS?)");
}
