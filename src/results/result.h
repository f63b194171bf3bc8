#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "disk/counters.h"
#include "disk/progress.h"
#include "eventlog/event_log.h"
#include "health/health.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "ops/operations.h"
#include "platform/clock.h"
#include "smart/identification.h"
#include "smart/snapshot.h"

/// What a result file tells beside what was measured. Texts are in the ANSI code page.
struct Result {
  std::string version;
  std::string command_line;
  std::string operation;  // "read", "random write" ...
  platform::DateTime start_local;
  platform::DateTime start_utc;
  platform::DateTime end_local;
  platform::DateTime end_utc;
  int drive = 0;
  bool cancelled = false;
  std::string stopped;  // why the run ended early by itself; empty where it did not
  Identification disk;
  SectorSizes sizes;
  Counters counters;
  Progress rates;
  Snapshot before;
  Snapshot after;
  EventLog events;
  std::optional<Health> health_before;
  std::optional<Health> health_after;
  RunFindings findings;
  VerifyRun verify;
  std::int32_t exit_code = 0;
  std::string outcome;    // in one word
  std::string reason;     // why it ended before its first transfer
  bool measured = false;  // an operation was begun: graph and map are of it
  std::string report;     // as it stands in Text1
};

/// The whole result as one JSON document. docs/results.md tells its members.
std::string json_result(const Result& result, const Measure& measured);

class JsonText;

/// The members "run_end", "bad_places" and "pinpoint" of that document.
void put_run_end(const Result& result, const Measure& measured, JsonText* json);
void put_bad_places(const Result& result, JsonText* json);

/// The file of /BADLIST: a line for each range, "first LBA,sectors,kind,system error".
std::string bad_list(const std::vector<BadRange>& ranges);

/// The member "health" of that document: the verdict, both snapshots with the pages as they came, the temperatures.
void put_health(const Result& result, JsonText* json);

/// The member "verify", of a run that read back and compared.
void put_verify(const Result& result, JsonText* json);

/// The rate graph as one SVG document that needs nothing else, as the window draws it: the average as a line within the
/// band of lowest to highest, random tests as points, the slow limit dashed, slow transfers as triangles and errors as
/// crosses. Resting the pointer on a place tells its LBAs, MB/s and milliseconds, on a mark its bad ranges too.
std::string svg_graph(const Result& result, const Measure& measured);

/// Verdict, identity, run, graph, map, bad places and the report on one page that needs nothing else.
std::string html_page(const Result& result, const Measure& measured);

/// `text` (ANSI) in UTF-8, as it may stand in SVG text and in quoted attributes.
std::string svg_text(std::string_view text);
