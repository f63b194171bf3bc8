#include "results/results.h"

#include "disk/drive.h"
#include "disk/early_end.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "journal/places.h"
#include "measure/measure.h"
#include "ops/drive_health.h"
#include "ops/frame.h"
#include "ops/pinpoint.h"
#include "platform/system.h"
#include "results/csv_rows.h"
#include "results/json_text.h"
#include "results/map_writer.h"
#include "results/output_file.h"
#include "results/result.h"
#include "results/run_result.h"

namespace {

constexpr std::size_t kMinutes = 16;  // 2026-03-02T10:00

Result collect() {
  Result result;
  const bool framed = measured_something();
  result.version = results.version;
  result.command_line = asked.command_line;
  result.operation = operation_name();
  result.start_local = framed ? frame.Op_Start_Date : results.command_local;
  result.start_utc = framed ? frame.start_utc : results.command_utc;
  result.end_local = platform::local_time();
  result.end_utc = platform::utc_time();
  result.drive = form1.SelectedDrive;
  result.cancelled = framed ? measure.stopped : form1.MyCancel && !command_end.before_transfers;
  result.stopped = early_end.why;
  result.disk = identification;
  result.sizes = disk.sizes;
  result.counters = counters;
  result.rates = progress;
  result.before = frame.before;
  result.after = smart.Smart_Snapshot;
  result.events = event_log;
  result.health_before = drive_health.before;
  result.health_after = drive_health.after;
  result.findings = run_findings;
  result.measured = framed;
  result.report = form1.Text1.text();
  result.verify = verify_run;
  return result;
}

void tell_failure(const std::string& error) {
  if (error.empty()) return;
  command_end.results_lost = true;
  tell_and_show(error);
}

/// The outcome and the exit code as they stand now: a file that is written before this one may have failed.
void judge_end(Result* result) {
  result->outcome = outcome_name(outcome_of(*result));
  result->reason = command_end.reason;
  if (asked.exit_by_bits) output.asked_code = exit_bits(*result);
  result->exit_code = exit_code();
}

/// The files that tell how the run ended.
struct Endings {
  bool page = false;
  bool json = false;
};

/// Writes those of `which`, and gives those that could be written.
Endings write_endings(Result* result, Endings which) {
  const auto write = [&](bool wanted, const std::optional<std::string>& name, auto text) {
    if (!wanted) return false;
    judge_end(result);
    const std::string error = write_whole_file(*name, text(*result, measure));
    tell_failure(error);
    return error.empty();
  };
  Endings written;
  written.page = write(which.page, asked.html, html_page);
  written.json = write(which.json, asked.json, json_result);
  return written;
}

/// Tells the outcome. What was written before something that then could not be says so in the end.
void tell_outcome(Result* result, Endings which) {
  const bool lost_before = command_end.results_lost;
  const Endings written = write_endings(result, which);
  judge_end(result);
  const std::string variable = "SET QV_RESULT=" + result->outcome + "\r\n";
  AppendReportVars(variable);
  form1.Text1.append("\r\n" + variable);
  if (command_end.results_lost && !lost_before) write_endings(result, written);
  judge_end(result);
}

/// In the user's documents, named by the drive and the minute in which the run began.
std::string proposed_page(const Result& result) {
  const std::string serial =
      result.disk.Disk_Serial.empty() ? "drive" + std::to_string(result.drive) : in_file_name(result.disk.Disk_Serial);
  std::string when = json_time(result.start_local).substr(0, kMinutes);
  std::erase(when, ':');
  const std::string folder = platform::documents_folder();
  return (folder.empty() ? folder : with_separator(folder)) + "sectorix-" + serial + "-" + when + ".html";
}

bool is_there(const std::string& name) {
  constexpr std::uint32_t kNoAccess = 0;
  const kernel32::Handle file =
      kernel32::CreateFileA(name.c_str(), kNoAccess, platform::kShareRead, platform::kOpenExisting, 0);
  if (file == kernel32::kInvalidHandle) return false;
  kernel32::CloseHandle(file);
  return true;
}

void tell_nobody() {
  measure.on_transfer = nullptr;
  measure.on_settled = nullptr;
  end_map();
}

void close_results(Result result) {
  results.open = false;
  output.before_exit = nullptr;
  tell_nobody();
  // A batch gets its files even where nothing was to be transferred.
  if (!measured_something() && !in_batch()) {
    abandon_csv();
    return;
  }
  if (asked.csv) tell_failure(finish_csv());
  if (asked.map) tell_failure(write_map());
  if (asked.badlist) tell_failure(write_whole_file(*asked.badlist, bad_list(result.findings.bad)));
  if (asked.graph) tell_failure(write_whole_file(*asked.graph, svg_graph(result, measure)));
  tell_outcome(&result, {.page = asked.html.has_value(), .json = asked.json.has_value()});
  result.report = form1.Text1.text();
  if (result.measured) results.last = std::move(result);
}

/// The program ends before the command's first transfer: of all files one tells why. Nothing was looked at that the
/// names could be: a file that may be something else is left alone.
void close_unstarted() {
  results.open = false;
  tell_nobody();
  abandon_csv();
  Result result = collect();
  const bool to_file = asked.vars && *asked.vars != "-";
  if (to_file && !is_new_or_ours(*asked.vars, "SET QV_")) output.ReportFileName = "-";
  tell_outcome(&result, {.json = asked.json && is_new_or_ours(*asked.json, "\"format_version\"")});
}

void open_results(const std::string& version, const std::string& unmeasured_name) {
  results = {.version = version,
             .unmeasured_name = unmeasured_name,
             .runs_before = measure.runs,
             .command_local = platform::local_time(),
             .command_utc = platform::utc_time(),
             .open = true,
             .last = std::move(results.last)};
  command_end = {.before_transfers = {},
                 .reason = {},
                 .results_lost = in_batch() && command_end.results_lost};  // of a report that is cut short already
  output.asked_code.reset();
}

}  // namespace

bool measured_something() {
  return measure.runs != results.runs_before;
}

void begin_results(const std::string& version, const std::string& unmeasured_name) {
  open_results(version, unmeasured_name);
  if (in_batch()) output.before_exit = close_unstarted;
  begin_map();
  if (asked.map) measure.on_transfer = note_in_map;
  if (!asked.csv) return;
  begin_csv(*asked.csv);
  measure.on_settled = add_csv_row;
}

std::string operation_name() {
  return measured_something() ? run_kind_text(measure.plan.kind) : results.unmeasured_name;
}

void finish_results() {
  close_results(collect());
}

void tell_unstarted(const std::string& version, Outcome outcome, const std::string& reason) {
  open_results(version, "none");
  end_before_transfers(outcome, reason);
  close_unstarted();
}

std::string why_no_page() {
  return results.last ? std::string() : "There is no result to save yet: run a command first.";
}

void add_to_last_results() {
  results.last->findings = run_findings;
  results.last->report = form1.Text1.text();
}

void save_page() {
  const std::string name =
      ask_line("File for one page with the verdict, the graph, the map, bad places and the report.",
               "SAVE THE RESULT AS A PAGE", proposed_page(*results.last));
  if (name.empty()) return;
  std::string problem = why_no_result_file(name);
  if (problem.empty() && is_there(name) && !ask_user("\"" + name + "\" is there already. Replace it?", "REPLACE?"))
    return;
  if (problem.empty()) problem = write_whole_file(name, html_page(*results.last, measure));
  if (!problem.empty()) tell_user(problem);
  form1.TxtStatus.set_text(problem.empty() ? "Saved as " + name : "The page was not saved.");
}

void leave_results() {
  command_end.cancelled = true;
  if (!results.open || !measured_something()) {
    tell_nobody();
    abandon_csv();
    return;
  }
  end_measuring(true);
  if (!run_findings.pinpoint.made) list_bad_transfers();
  Result result = collect();
  result.cancelled = true;
  result.after = {};
  result.health_after = {};
  result.events = {};
  close_results(result);
}
