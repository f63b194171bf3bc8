#include <algorithm>

#include "disk/error_text.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "results/json_text.h"
#include "results/result.h"

namespace {

constexpr std::int64_t kFormatVersion = 1;
constexpr int kThousandths = 3;

/// ISO 8601, as 2026-03-01T10:00:00.
void put_moment(const char* name, const platform::DateTime& utc, const platform::DateTime& local, JsonText* json) {
  json->open_object(name);
  json->text("utc", json_time(utc) + "Z");
  json->text("local", json_time(local));
  json->close_object();
}

void put_disk(const Result& result, JsonText* json) {
  const std::int64_t sectors = result.disk.Drive_Sectors;
  json->open_object("disk");
  json->number("number", result.drive);
  json->text("model", result.disk.Disk_Model);
  json->text("serial", result.disk.Disk_Serial);
  json->text("firmware", result.disk.Disk_Firmware);
  json->number("sectors", sectors);
  json->number("sector_bytes", SectorSize);
  json->number("logical_sector_bytes", result.sizes.logical);
  json->number("physical_sector_bytes", result.sizes.physical);
  json->text("bus", bus_name(result.disk.bus));
  json->text("identity_from", source_name(result.disk.source));
  json->close_object();
}

void put_operation(const Result& result, const RunPlan& plan, JsonText* json) {
  json->open_object("operation");
  json->text("name", result.operation);
  json->number("first_lba", plan.first_lba);
  json->number("sectors", plan.sectors);
  json->number("sectors_to_transfer", plan.work);
  json->truth("cancelled", result.cancelled);
  json->close_object();
}

void put_totals(const Result& result, const Measure& measured, JsonText* json) {
  json->open_object("totals");
  json->number("transfers", measured.transfers);
  json->number("sectors", measured.done);
  json->real("seconds", measured.seconds, kThousandths);
  json->number("slow_transfers", measured.slow);
  json->number("stalled_transfers", measured.stalled);
  json->number("errors", measured.failed);
  json->number("read_errors", measured.failed - measured.failed_writes);
  json->number("write_errors", measured.failed_writes);
  json->number("compare_errors", result.counters.TotalCErrors);
  json->close_object();
}

void put_rates(const Result& result, const Measure& measured, JsonText* json) {
  const RateColumn whole = pixel_column(measured.map, 0, 1).facts;
  json->open_object("rates");
  json->real("average", average_rate(whole), kThousandths);
  json->real("lowest", whole.lowest, kThousandths);
  json->real("highest", whole.highest, kThousandths);
  json->real("slow_limit", result.rates.SlowRate, kThousandths);
  json->truth("slow_limit_is_auto", result.rates.AutoSlowRate);
  json->close_object();
}

void put_transfer(const Transfer& transfer, JsonText* json) {
  json->open_object();
  json->number("lba", transfer.lba);
  json->number("sectors", transfer.sectors);
  json->text("operation", phase_name(transfer.phase));
  json->real("milliseconds", transfer.seconds * 1000.0, kThousandths);
  json->number("error", transfer.error);
  json->real("beyond_ms", transfer.beyond * 1000.0, kThousandths);
  json->close_object();
}

void put_latency(const Latency& latency, JsonText* json) {
  json->open_array("histogram");
  for (std::size_t i = 0; i < kLatencyClasses; ++i) {
    json->open_object();
    json->text("class", class_text(static_cast<LatencyClass>(i)));
    json->number("transfers", latency.classes.at(i));
    json->close_object();
  }
  json->close_array();
  json->open_object("percentiles_ms");
  for (const double percent : {50.0, 95.0, 99.0, 99.9}) {
    json->real("p" + double_text(percent), percentile(latency, percent), kThousandths);
  }
  json->close_object();
  json->open_array("slowest");
  for (std::size_t i = 0; i < latency.slowest_kept; ++i) put_transfer(latency.slowest.at(i), json);
  json->close_array();
}

void put_zones(const SlowZones& zones, JsonText* json) {
  json->open_array("slow_zones");
  for (std::size_t i = 0; i < zones.kept; ++i) {
    const SlowZone& zone = zones.zones.at(i);
    json->open_object();
    json->number("first_lba", zone.first_lba);
    json->number("sectors", zone.end_lba - zone.first_lba);
    json->number("transfers", zone.transfers);
    json->real("longest_ms", zone.longest * 1000.0, kThousandths);
    json->real("lowest_mb_per_s", zone.lowest_rate, kThousandths);
    json->close_object();
  }
  json->close_array();
  json->number("slow_transfers_in_no_zone", zones.transfers_beyond);
}

void put_errors(const Measure& measured, JsonText* json) {
  json->open_array("errors");
  for (std::size_t i = 0; i < measured.errors_kept; ++i) {
    const TransferError& error = measured.errors.at(i);
    json->open_object();
    json->number("lba", error.lba);
    json->number("sectors", error.sectors);
    json->text("operation", phase_name(error.phase));
    json->number("code", error.code);
    json->text("text", GetErrMsg(error.code));
    json->close_object();
  }
  json->close_array();
  json->number("errors_not_listed", measured.failed - static_cast<std::int64_t>(measured.errors_kept));
}

void put_snapshot(const char* name, const Snapshot& snapshot, JsonText* json) {
  json->open_array(name);
  for (const Smart_Attribute& attribute : snapshot.Attributes) {
    if (attribute.Attr_Id == 0) continue;
    json->open_object();
    json->number("id", attribute.Attr_Id);
    json->text("name", trimmed(attribute.Attr_Name));
    json->number("flags", attribute.Flags);
    json->number("current", attribute.Current);
    json->number("worst", attribute.Worst);
    json->number("threshold", attribute.Threshold);
    json->number("raw", attribute.Raw);
    json->close_object();
  }
  json->close_array();
}

/// The attributes whose raw value moved, after minus before.
void put_difference(const Snapshot& before, const Snapshot& after, JsonText* json) {
  json->open_array("difference");
  for (const Smart_Attribute& now : after.Attributes) {
    const auto was = std::find_if(before.Attributes.begin(), before.Attributes.end(),
                                  [&](const Smart_Attribute& one) { return one.Attr_Id == now.Attr_Id; });
    if (now.Attr_Id == 0 || was == before.Attributes.end() || was->Raw == now.Raw) continue;
    json->open_object();
    json->number("id", now.Attr_Id);
    json->text("name", trimmed(now.Attr_Name));
    json->number("raw", now.Raw - was->Raw);
    json->close_object();
  }
  json->close_array();
}

void put_events(const EventLog& log, JsonText* json) {
  json->truth("events_complete", log.complete);
  json->open_array("events");
  for (const LoggedEvent& event : log.entries) {
    json->open_object();
    json->text("time", json_time(event.time));
    json->text("record", event.record);
    json->text("event_id", event.event_id);
    json->text("category", event.category);
    json->text("type", event.type);
    json->text("source", event.source);
    json->text("message", event.message);
    json->text("log", event.logfile);
    json->close_object();
  }
  json->close_array();
}

}  // namespace

std::string json_result(const Result& result, const Measure& measured) {
  JsonText json;
  json.number("format_version", kFormatVersion);
  json.text("program", "Sectorix");
  json.text("version", result.version);
  json.text("command_line", result.command_line);
  put_moment("start", result.start_utc, result.start_local, &json);
  put_moment("end", result.end_utc, result.end_local, &json);
  put_disk(result, &json);
  put_operation(result, measured.plan, &json);
  put_totals(result, measured, &json);
  put_rates(result, measured, &json);
  put_latency(measured.latency, &json);
  put_zones(measured.zones, &json);
  put_errors(measured, &json);
  put_run_end(result, measured, &json);
  put_bad_places(result, &json);
  json.open_object("smart");
  put_snapshot("before", result.before, &json);
  put_snapshot("after", result.after, &json);
  put_difference(result.before, result.after, &json);
  json.close_object();
  put_health(result, &json);
  put_verify(result, &json);
  put_events(result.events, &json);
  json.number("exit_code", result.exit_code);
  json.text("outcome", result.outcome);
  json.text("reason", result.reason);
  return json.finish();
}
