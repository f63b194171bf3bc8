#include "measure/measure.h"

#include <algorithm>
#include <memory>

namespace {

constexpr double kDay = 86400.0;  // seconds

Phase first_phase(RunKind kind) {
  if (kind == RunKind::write) return Phase::writing;
  if (kind == RunKind::verify) return Phase::verifying;
  return kind == RunKind::search ? Phase::searching : Phase::reading;
}

/// Seconds since the first transfer began, across midnights.
double since_start(double start) {
  if (measure.transfers == 0) {
    measure.first_start = start;
  } else if (start < measure.last_start) {
    ++measure.days;
  }
  measure.last_start = start;
  return measure.days * kDay + start - measure.first_start;
}

Transfer transfer_of(const Timed& timed) {
  Transfer transfer;
  transfer.phase = measure.phase;
  if (writes(measure.phase) != timed.wrote) transfer.phase = timed.wrote ? Phase::writing : Phase::reading;
  transfer.slow = timed.slow;
  transfer.error = timed.error;
  transfer.lba = timed.lba;
  transfer.sectors = timed.sectors;
  transfer.start = since_start(timed.start);
  transfer.seconds = timed.end - timed.start + (timed.end < timed.start ? kDay : 0.0);
  return transfer;
}

void keep_error(const Transfer& transfer) {
  ++measure.failed;
  measure.failed_writes += writes(transfer.phase) ? 1 : 0;
  if (measure.errors_kept == Measure::kMostErrors) return;
  measure.errors.at(measure.errors_kept++) = {transfer.lba, transfer.sectors, transfer.error, transfer.phase};
}

}  // namespace

const char* run_kind_text(RunKind kind) {
  constexpr std::array<const char*, 10> kTexts = {"none",           "read",         "write",
                                                  "search",         "restore",      "verify",
                                                  "random read",    "random write", "destructive random write",
                                                  "off-track write"};
  return kTexts.at(static_cast<std::size_t>(kind));
}

void begin_measuring(const RunPlan& plan) {
  const std::uint64_t runs = measure.runs + 1;
  auto* const on_transfer = measure.on_transfer;
  // In place: half a megabyte is too much for a temporary on the stack.
  std::destroy_at(&measure);
  std::construct_at(&measure);
  measure.runs = runs;
  measure.on_transfer = on_transfer;
  measure.plan = plan;
  if (plan.work <= 0) measure.plan.work = plan.sectors;
  measure.running = true;
  measure.phase = first_phase(plan.kind);
  lay_out(plan.first_lba, plan.sectors, is_random(plan.kind), &measure.map);
}

void end_measuring(bool stopped) {
  if (!measure.running) return;
  measure.running = false;
  measure.stopped = stopped;
}

void measure_phase(Phase phase) {
  measure.phase = phase;
}

void measure_transfer(const Timed& timed) {
  if (measure.plan.kind == RunKind::none) return;
  const Transfer transfer = transfer_of(timed);
  const LatencyClass which = class_of(transfer);
  ++measure.transfers;
  measure.done += transfer.sectors;
  measure.seconds = transfer.start + transfer.seconds;
  if (measure.transfers == 1) note_pace(transfer.start, 0, &measure.pace);
  note_pace(measure.seconds, measure.done, &measure.pace);
  add_latency(transfer, which, &measure.latency);
  add_rate(transfer, which, &measure.map);
  if (transfer.error != 0) keep_error(transfer);
  if (transfer.slow) {
    ++measure.slow;
    add_slow(transfer, &measure.zones);
  }
  if (measure.on_transfer != nullptr) measure.on_transfer(transfer);
}

HowFar how_far(const Measure& of) {
  HowFar how;
  how.phase = of.phase;
  if (of.plan.work > 0) {
    how.share = std::clamp(static_cast<double>(of.done) / static_cast<double>(of.plan.work), 0.0, 1.0);
    how.seconds_left = seconds_left(of.pace, of.plan.work);
  }
  return how;
}
