#include "ops/drive_health.h"

#include <algorithm>
#include <array>

#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "health/ask.h"
#include "health/verdict.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "ops/operations.h"
#include "smart/identification.h"

namespace {

RunTotals totals_of_run() {
  if (measure.runs == drive_health.runs_before) return {.highest_celsius = run_findings.temperature.highest};
  const auto* const first = measure.errors.begin();
  const std::int64_t by_drive = std::count_if(first, first + measure.errors_kept, is_of_the_drive);
  // Those beyond the kept ones are taken to be like them.
  const std::int64_t not_kept = measure.failed - static_cast<std::int64_t>(measure.errors_kept);
  // What a read-back found is in no counter.
  const std::int64_t not_read_back = verify_run.after_write ? verify_run.failed_by_drive : 0;
  const std::int64_t differing = verify_run.after_write ? verify_run.differing : 0;
  return {.failed_transfers = (by_drive == 0 ? 0 : by_drive + not_kept) + not_read_back,
          .compare_errors = counters.TotalCErrors + differing,
          .slow_transfers = measure.slow,
          .highest_celsius = run_findings.temperature.highest};
}

}  // namespace

bool is_of_the_drive(const TransferError& error) {
  // winerror.h: ACCESS_DENIED, INVALID_HANDLE, INVALID_DATA, WRITE_PROTECT, SHARING_VIOLATION, LOCK_VIOLATION,
  // INVALID_PARAMETER.
  constexpr std::array<std::uint32_t, 7> kRefusals = {
      platform::kAccessDenied, 6, kRefusedTransfer, platform::kWriteProtect, 32, 33, 87};
  const bool on_the_disk = error.lba + error.sectors <= identification.Drive_Sectors;
  return on_the_disk && std::find(kRefusals.begin(), kRefusals.end(), error.code) == kRefusals.end();
}

void begin_drive_health() {
  run_findings = {.drive = form1.SelectedDrive};
  drive_health = {.before = ask_health(form1.SelectedDrive), .after = std::nullopt, .runs_before = measure.runs};
}

void end_drive_health() {
  if (!drive_health.before) {
    run_findings = {
        .drive = form1.SelectedDrive,
        .judged = true,
        .verdict = {.facts = {disk.access_denied ? "access to the drive is denied" : "the drive was not found"}}};
    return;
  }
  drive_health.after = ask_health(form1.SelectedDrive);
  run_findings.temperature.highest = std::max(run_findings.temperature.highest, drive_health.after->celsius);
  run_findings.verdict = judge(*drive_health.before, *drive_health.after, totals_of_run());
  run_findings.judged = true;
}
