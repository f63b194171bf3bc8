#include "disk/error_text.h"
#include "measure/run_map.h"
#include "results/json_text.h"
#include "results/result.h"

namespace {

constexpr int kThousandths = 3;

void put_range(const BadRange& range, JsonText* json) {
  json->open_object();
  json->number("first_lba", range.first_lba);
  json->number("sectors", range.sectors);
  json->text("kind", bad_kind_text(range.kind));
  json->number("code", range.code);
  if (range.code != 0) json->text("text", GetErrMsg(range.code));
  json->real("milliseconds", range.milliseconds, kThousandths);
  if (!range.partition.empty()) json->text("partition", range.partition);
  if (!range.owner.empty()) json->text("owner", range.owner);
  json->close_object();
}

}  // namespace

void put_run_end(const Result& result, const Measure& measured, JsonText* json) {
  json->open_object("run_end");
  json->number("next_lba", measured.next_lba);
  json->number("percent_not_done", percent_not_done(measured));
  if (!result.stopped.empty()) json->text("stopped", result.stopped);
  if (run_map.resumed) json->number("sectors_done_before", run_map.done_before);
  json->close_object();
}

void put_bad_places(const Result& result, JsonText* json) {
  json->open_array("bad_places");
  for (const BadRange& range : result.findings.bad) put_range(range, json);
  json->close_array();
  const Pinpoint& told = result.findings.pinpoint;
  json->open_object("pinpoint");
  json->truth("made", told.made);
  json->number("transfers", told.suspects);
  json->number("looked_at", told.looked_at);
  json->number("recovered", told.recovered);
  json->number("reads", told.reads);
  json->real("seconds", told.seconds, kThousandths);
  if (!told.stopped.empty()) json->text("stopped", told.stopped);
  json->close_object();
}
