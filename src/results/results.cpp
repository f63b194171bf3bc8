#include "results/results.h"

#include "disk/drive.h"
#include "disk/early_end.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/measure.h"
#include "ops/drive_health.h"
#include "ops/frame.h"
#include "ops/pinpoint.h"
#include "results/csv_rows.h"
#include "results/map_writer.h"
#include "results/result.h"

namespace {

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
  result.cancelled = framed ? measure.stopped : form1.MyCancel;
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
  result.verify = verify_run;
  result.exit_code = exit_code();
  return result;
}

void tell_failure(const std::string& error) {
  if (!error.empty()) tell_and_show(error);
}

void tell_nobody() {
  measure.on_transfer = nullptr;
  measure.on_settled = nullptr;
  end_map();
}

void close_results(const Result& result) {
  results.open = false;
  tell_nobody();
  // A batch gets its files even where nothing was to be transferred.
  if (!measured_something() && !in_batch()) {
    abandon_csv();
    return;
  }
  if (asked.csv) tell_failure(finish_csv());
  if (asked.json) tell_failure(write_whole_file(*asked.json, json_result(result, measure)));
  if (asked.map) tell_failure(write_map());
  if (asked.badlist) tell_failure(write_whole_file(*asked.badlist, bad_list(result.findings.bad)));
  if (asked.graph) tell_failure(write_whole_file(*asked.graph, svg_graph(result, measure)));
}

}  // namespace

bool measured_something() {
  return measure.runs != results.runs_before;
}

void begin_results(const std::string& version, const std::string& unmeasured_name) {
  results = {.version = version,
             .unmeasured_name = unmeasured_name,
             .runs_before = measure.runs,
             .command_local = platform::local_time(),
             .command_utc = platform::utc_time(),
             .open = true};
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

void leave_results() {
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
