#include "results/health_report.h"

#include <algorithm>
#include <string>

#include "device/volume_disk.h"
#include "disk/counters.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/outcome.h"
#include "form/output.h"
#include "health/numbers.h"
#include "journal/places.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "ops/drive_health.h"
#include "ops/frame.h"
#include "platform/system.h"
#include "results/history.h"
#include "results/results.h"
#include "smart/identification.h"

namespace {

constexpr const char* kLineEnd = "\r\n";

std::string number_text(const std::optional<std::int64_t>& number) {
  return number ? std::to_string(*number) : std::string();
}

/// The snapshot that tells most: the last one that answered.
Health newest() {
  if (drive_health.after && (drive_health.after->answered || !drive_health.before)) return *drive_health.after;
  return drive_health.before.value_or(Health{});
}

std::string drive_text() {
  const Identification& id = identification;
  std::string text = "Drive " + std::to_string(form1.SelectedDrive);
  if (id.Drive_Sectors == 0) return text;
  text += ": " + id.Disk_Model + ", serial number " + (id.Disk_Serial.empty() ? "unknown" : id.Disk_Serial) +
          ", firmware " + (id.Disk_Firmware.empty() ? "unknown" : id.Disk_Firmware) + ", bus " + bus_name(id.bus);
  return id.source == IdentitySource::none ? text : text + ", told by " + source_name(id.source);
}

/// "pending sectors                 0, now 8"
std::string number_lines() {
  constexpr std::size_t kWidth = 32;
  std::string lines;
  for (const HealthNumber& number : health_numbers()) {
    const auto was = drive_health.before ? number.of(*drive_health.before) : std::nullopt;
    const auto is = drive_health.after ? number.of(*drive_health.after) : std::nullopt;
    if (!was && !is) continue;
    std::string line = number.label;
    line.resize(kWidth, ' ');
    line += was ? number_text(was) : number_text(is);
    if (was && is && *was != *is) line += ", now " + number_text(is);
    if (was && !is && drive_health.after) line += ", now unknown";
    lines += line + kLineEnd;
  }
  return lines;
}

std::string unanswered_lines() {
  std::string lines;
  const std::optional<Health>& last = drive_health.after ? drive_health.after : drive_health.before;
  if (!last) return lines;
  for (const Unanswered& one : last->unanswered) {
    lines += "Not answered: " + one.request + (one.code == 0 ? "" : ", error " + std::to_string(one.code)) + ": " +
             one.reason + kLineEnd;
  }
  return lines;
}

std::string temperature_lines() {
  const TemperatureTrack& track = run_findings.temperature;
  std::string lines;
  if (track.highest) {
    lines += "Highest temperature in the run: " + std::to_string(*track.highest) + " degrees Celsius" + kLineEnd;
  }
  if (track.pauses > 0) {
    lines += "Paused " + std::to_string(track.pauses) + (track.pauses == 1 ? " time, " : " times, ") +
             fixed_text(track.paused_seconds, 0) + " seconds, for the temperature" + kLineEnd;
  }
  if (asked.max_celsius && !track.tells && drive_health.before) {
    lines += "/MAXTEMP did nothing";
    lines += track.samples.empty() ? "" : " from some moment on";
    lines += std::string(": the drive does not tell its temperature without disturbing transfers") + kLineEnd;
  }
  return lines;
}

std::string history_lines() {
  std::string lines;
  for (const std::string& grown : run_findings.grown_since) lines += "Grown since: " + grown + kLineEnd;
  return lines;
}

/// A text that a command interpreter takes as it stands.
std::string variable(const std::string& name, std::string value) {
  std::replace_if(
      value.begin(), value.end(),
      [](char c) { return c < ' ' || std::string_view("&|<>^%!\"").find(c) != std::string_view::npos; }, '_');
  return "SET QV_H_" + name + "=" + value + kLineEnd;
}

std::string variables() {
  std::string since;
  for (const std::string& grown : run_findings.grown_since) since += (since.empty() ? "" : "; ") + grown;
  const Health last = newest();
  std::string lines = variable("VERDICT", grade_name(run_findings.verdict.grade)) +
                      variable("WHY", why(run_findings.verdict)) + variable("BUS", bus_name(identification.bus));
  for (const HealthNumber& number : health_numbers()) {
    if (number.variable != nullptr) lines += variable(number.variable, number_text(number.of(last)));
  }
  return lines + variable("TEMP_HIGHEST", number_text(run_findings.temperature.highest)) +
         variable("PAUSED_SECONDS", fixed_text(run_findings.temperature.paused_seconds, 0)) + variable("SINCE", since);
}

HistoryLine line_of_run() {
  HistoryLine line{.date = platform::local_time(),
                   .model = identification.Disk_Model,
                   .serial = identification.Disk_Serial,
                   .firmware = identification.Disk_Firmware,
                   .operation = operation_name(),
                   .verdict = grade_name(run_findings.verdict.grade),
                   .why = why(run_findings.verdict),
                   .numbers = {}};
  const Health last = newest();
  for (const HealthNumber& number : health_numbers()) {
    if (const auto value = number.of(last)) line.numbers[number.key] = *value;
  }
  return line;
}

/// Why this run gets no line; empty where it gets one.
std::string why_no_history(bool writes) {
  if (identification.Disk_Serial.empty()) return "the drive has no serial number.";
  if (!serial_is_its_own()) return "the serial number may be another drive's.";
  const bool beside =
      !writes || lies_on_drive(with_separator(*asked.history) + "x", form1.SelectedDrive) == OnDrive::no;
  return beside ? "" : "its folder may lie on the disk under test.";
}

void keep_history(bool writes) {
  if (!asked.history || identification.Drive_Sectors == 0) return;
  std::string problem = why_no_history(writes);
  if (!problem.empty()) {
    tell_and_show("No line of history was written: " + problem);
    return;
  }
  const HistoryLine line = line_of_run();
  const std::optional<HistoryLine> last = add_to_history(*asked.history, line, &problem);
  if (!problem.empty()) {
    command_end.results_lost = true;
    tell_and_show(problem);
  }
  if (last) run_findings.grown_since = grown_since(*last, line);
}

/// GOOD to FAILING from the first number on: so that IF ERRORLEVEL asks for "this bad, or worse".
std::int32_t code_of(Grade grade) {
  switch (grade) {
    case Grade::good:
      return 100'001;
    case Grade::note:
      return 100'002;
    case Grade::no_data:
      return 100'003;
    case Grade::doubtful:
      return 100'004;
    case Grade::worse:
      return 100'005;
    case Grade::failing:
      break;
  }
  return 100'006;
}

/// The verdict's code, but not over a run that did not come to its end, or whose failures the verdict does not tell of.
void set_exit_code() {
  if (!asked.exit_by_verdict || form1.MyCancel || identification.Drive_Sectors == 0) return;
  const bool refused = !measured_something() && output.ExitCode != 0;
  const bool failed = counters.TotalErrors + counters.TotalCErrors + verify_run.failed + verify_run.differing > 0;
  if (refused || (failed && !is_bad(run_findings.verdict.grade))) return;
  output.asked_code = code_of(run_findings.verdict.grade);
}

}  // namespace

void tell_health(bool writes) {
  keep_history(writes);
  report_line(std::string("\r\n\r\nHEALTH\r\n======\r\n") + drive_text() + kLineEnd +
              verdict_line(run_findings.verdict) + kLineEnd + number_lines() + temperature_lines() + history_lines() +
              unanswered_lines());
  const std::string lines = variables();
  AppendReportVars(lines);
  form1.Text1.append(lines);
  set_exit_code();
}

void ask_history_folder() {
  const std::string data = platform::local_data_folder();
  const std::string proposed = data.empty() ? std::string() : with_separator(data) + "Sectorix";
  const std::string folder =
      ask_line("Folder in which each drive gets a file with a line for every run. The next run tells what grew since.",
               "KEEP A HISTORY?", asked.history.value_or(proposed));
  if (folder.empty()) return;
  if (folder == proposed) platform::make_folder(folder);
  asked.history = folder;
}
