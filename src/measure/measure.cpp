#include "measure/measure.h"

#include <algorithm>
#include <limits>
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
  measure.errors.at(measure.errors_kept++) = {transfer.lba, transfer.sectors, transfer.error, transfer.phase,
                                              transfer.seconds};
}

/// The time beyond the usual one is known: what depends on it.
void settle(const Transfer& transfer) {
  const LatencyClass which = class_of(transfer);
  add_latency_class(transfer, which, &measure.latency);
  if (transfer.error == 0) add_class(transfer, which, &measure.map);
  if (is_stalled(transfer)) {
    ++measure.stalled;
    if (measure.stalls_kept < Measure::kMostStalls) measure.stalls.at(measure.stalls_kept++) = transfer;
  }
  if (measure.on_settled != nullptr) measure.on_settled(transfer);
}

/// Settles the waiting transfers from the first one on, as far as their neighbours are known. `most` more may wait.
void settle_waiting(std::size_t most) {
  Waiting& waiting = measure.waiting;
  while (waiting.kept > 0) {
    Waiting::One& one = waiting.ones.at(waiting.first);
    const bool failed = one.transfer.error != 0;
    if (!failed && waiting.kept <= most && !is_surrounded(one.transfer.phase, one.number, measure.usual)) return;
    if (!failed) {
      const std::optional<double> usual = usual_seconds(one.transfer, one.number, measure.usual);
      one.transfer.beyond = usual ? std::max(one.transfer.seconds - *usual, 0.0) : beyond_nothing(one.transfer);
    }
    settle(one.transfer);
    waiting.first = (waiting.first + 1) % Waiting::kMost;
    --waiting.kept;
  }
}

void wait_for_neighbours(const Transfer& transfer) {
  Waiting& waiting = measure.waiting;
  Waiting::One& one = waiting.ones.at((waiting.first + waiting.kept) % Waiting::kMost);
  one.transfer = transfer;
  if (transfer.error == 0) one.number = add_usual(transfer, &measure.usual);
  ++waiting.kept;
  settle_waiting(Waiting::kMost - 1);
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
  auto* const on_settled = measure.on_settled;
  // In place: half a megabyte is too much for a temporary on the stack.
  std::destroy_at(&measure);
  std::construct_at(&measure);
  measure.runs = runs;
  measure.on_transfer = on_transfer;
  measure.on_settled = on_settled;
  measure.plan = plan;
  if (plan.work < 0) measure.plan.work = plan.sectors;
  measure.running = true;
  measure.phase = first_phase(plan.kind);
  measure.next_lba = plan.first_lba;
  lay_out(plan.first_lba, plan.sectors, is_random(plan.kind), &measure.map);
}

void end_measuring(bool stopped) {
  if (!measure.running) return;
  measure.running = false;
  settle_waiting(0);
  measure.stopped = stopped;
}

void measure_phase(Phase phase) {
  measure.phase = phase;
}

void measure_transfer(const Timed& timed) {
  if (measure.plan.kind == RunKind::none) return;
  const Transfer transfer = transfer_of(timed);
  ++measure.transfers;
  measure.done += transfer.sectors;
  constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
  measure.next_lba = transfer.lba > kLast - transfer.sectors ? kLast : transfer.lba + transfer.sectors;
  measure.seconds = transfer.start + transfer.seconds;
  if (measure.transfers == 1) note_pace(transfer.start, 0, &measure.pace);
  note_pace(measure.seconds, measure.done, &measure.pace);
  add_latency(transfer, &measure.latency);
  add_rate(transfer, &measure.map);
  if (transfer.error != 0) {
    keep_error(transfer);
    add_class(transfer, LatencyClass::error, &measure.map);
  }
  if (transfer.slow) {
    ++measure.slow;
    add_slow(transfer, &measure.zones);
  }
  if (measure.on_transfer != nullptr) measure.on_transfer(transfer);
  wait_for_neighbours(transfer);
}

int percent_not_done(const Measure& of) {
  constexpr double kPercent = 100.0;
  if (of.plan.work <= 0 || of.done >= of.plan.work) return 0;
  const double left = static_cast<double>(of.plan.work - of.done) / static_cast<double>(of.plan.work);
  return std::max(static_cast<int>(kPercent * left), 1);
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
