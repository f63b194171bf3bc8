#include "results/run_result.h"

#include "measure/findings.h"
#include "results/results.h"
#include "smart/compare.h"

namespace {

constexpr std::int32_t kMistake = 1;
constexpr std::int32_t kRefused = 2;
constexpr std::int32_t kMissing = 4;
constexpr std::int32_t kCancelled = 8;
constexpr std::int32_t kFailedTransfers = 16;
constexpr std::int32_t kCompareErrors = 32;
constexpr std::int32_t kSmartErrors = 64;
constexpr std::int32_t kLoggedEvents = 128;
constexpr std::int32_t kResultsNotWritten = 256;
constexpr std::int32_t kEndedEarly = 512;
constexpr std::int32_t kBadVerdict = 1024;
constexpr std::int32_t kNotGivenBack = 2048;

std::int32_t bit(bool given, std::int32_t which) {
  return given ? which : 0;
}

std::int64_t failed_transfers(const Result& result) {
  return result.counters.TotalErrors + (result.verify.after_write ? result.verify.failed : 0);
}

std::int64_t differences(const Result& result) {
  return result.counters.TotalCErrors + (result.verify.after_write ? result.verify.differing : 0);
}

}  // namespace

Outcome outcome_of(const Result& result) {
  if (command_end.before_transfers) return *command_end.before_transfers;
  if (result.cancelled || command_end.cancelled) return Outcome::cancelled;
  const bool failed = failed_transfers(result) + differences(result) > 0 || !result.stopped.empty();
  const bool grown = measured_something() && comparison.errors > 0;
  // Entries of the event log are of all programs, and alone no error of this one.
  return failed || grown || command_end.test_ended || command_end.not_given_back || command_end.results_lost
             ? Outcome::errors
             : Outcome::ok;
}

std::int32_t exit_bits(const Result& result) {
  const Outcome outcome = outcome_of(result);
  std::int32_t bits = bit(outcome == Outcome::mistake, kMistake) | bit(outcome == Outcome::refused, kRefused) |
                      bit(outcome == Outcome::missing, kMissing) | bit(outcome == Outcome::cancelled, kCancelled) |
                      bit(command_end.results_lost, kResultsNotWritten) |
                      bit(command_end.not_given_back, kNotGivenBack) |
                      bit(is_bad(result.findings.verdict.grade), kBadVerdict);
  if (!measured_something()) return bits;
  return bits | bit(failed_transfers(result) > 0, kFailedTransfers) | bit(differences(result) > 0, kCompareErrors) |
         bit(comparison.errors > 0, kSmartErrors) | bit(!result.events.entries.empty(), kLoggedEvents) |
         bit(!result.stopped.empty() || !result.verify.stopped.empty(), kEndedEarly);
}
