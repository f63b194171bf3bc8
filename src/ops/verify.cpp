#include <algorithm>
#include <limits>
#include <string>

#include "buffer/pattern.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "form/output.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/selection.h"
#include "ops/write_guard.h"

namespace {

Pattern pattern_in_field() {
  return parse_pattern(form1.TxtPattern.text());
}

/// Sectors of the chunk that a write, of whose range `left` sectors are left, makes at `lba`.
std::int64_t written_chunk(std::int64_t lba, std::int64_t left) {
  const std::int64_t most = whole_below(kChunkSectors);
  return left <= most ? left : most - behind_boundary(lba);
}

std::int64_t count_chunks(std::int64_t lba, std::int64_t sectors) {
  const std::int64_t most = whole_below(kChunkSectors);
  const std::int64_t behind_first = sectors - written_chunk(lba, sectors);
  return 1 + behind_first / most + (behind_first % most == 0 ? 0 : 1);
}

void announce(std::int64_t start) {
  const std::string pattern = pattern_text(pattern_in_field());
  verify_run = {.asked = true,
                .pattern = pattern,
                .chunks = count_chunks(start, counters.No_Secs),
                .errors_before = counters.TotalErrors};
  report_and_show("Verifying " + std::to_string(counters.No_Secs) + " sectors starting at LBA " +
                  std::to_string(start) + " on drive " + std::to_string(form1.SelectedDrive) + " with pattern " +
                  pattern + "\r\n");
}

/// The chunk that was just read from `lba` against the pattern.
void compare_chunk(std::int64_t lba, std::int64_t sectors, const Pattern& pattern) {
  const auto chunk = disk.Sec_Buf.bytes().first(static_cast<std::size_t>(sectors * kSectorSize));
  const PatternDifference found = difference_from(chunk, pattern.span());
  ++verify_run.compared;
  if (found.sectors == 0) return;
  ++counters.TotalCErrors;
  ++verify_run.differing;
  if (verify_run.listed.size() == VerifyRun::kMostListed) return;
  const auto first = static_cast<std::int64_t>(found.first);
  const VerifyRun::Difference difference{lba + first / kSectorSize, first % kSectorSize, found.sectors};
  verify_run.listed.push_back(difference);
  report_line("Compare error at LBA " + std::to_string(difference.lba) + " byte " + std::to_string(difference.offset) +
              ": " + std::to_string(found.sectors) + " of the " + std::to_string(sectors) + " sectors from LBA " +
              std::to_string(lba) + " differ.");
}

/// A sum that would leave the exit code's range stays at its end: a run that found differences never ends with 0.
void add_differences_to_exit_code() {
  constexpr std::int64_t kMost = std::numeric_limits<std::int16_t>::max();
  add_to_exit_code(std::min<std::int64_t>(verify_run.differing, kMost - std::max<std::int64_t>(output.ExitCode, 0)));
}

}  // namespace

std::optional<RunPlan> plan_verify() {
  const std::int64_t start = take_range();
  announce(start);
  remake_buffer(written_chunk(0, counters.No_Secs) * kSectorSize, start);
  return RunPlan{.kind = RunKind::verify, .first_lba = start, .sectors = counters.No_Secs};
}

void verify_range(const RunPlan& plan) {
  const Pattern pattern = pattern_in_field();
  std::int64_t lba = plan.first_lba;
  for (std::int64_t left = plan.sectors; left > 0;) {
    const std::int64_t first = lba;
    const std::int64_t sectors = written_chunk(lba, left);
    const bool read = Read_sectors(&lba, sectors, sectors);
    if (lba == first) break;  // cancelled
    if (read) {
      compare_chunk(first, sectors, pattern);
    } else {
      ++verify_run.failed;
    }
    left -= sectors;
  }
}

void report_verify() {
  const std::int64_t more = verify_run.differing - std::ssize(verify_run.listed);
  if (more > 0) report_line(std::to_string(more) + " more chunks differ.");
  report_and_show("\r\n" + time_taken());
  tell_totals();
  form1.Text1.append("\r\nFinished!\r\n");
  add_to_exit_code(counters.TotalErrors - verify_run.errors_before);
  add_differences_to_exit_code();
}

void verify_written(const RunPlan& plan) {
  if (!write_guard.read_back) return;
  if (told_to_stop()) {
    verify_run = {.asked = true, .chunks = count_chunks(plan.first_lba, plan.sectors)};
    return;
  }
  announce(plan.first_lba);
  const std::int64_t shown_lba = disk.Buf_LBA;
  const std::int64_t shown_sectors = disk.Buf_Secs;
  counters.Sectors_Done = 0;
  measure_phase(Phase::verifying);
  start_timing();
  verify_range(plan);
  end_timing();
  report_verify();
  fill_pattern(disk.Sec_Buf.bytes(), pattern_in_field().span());
  disk.Buf_LBA = shown_lba;
  disk.Buf_Secs = shown_sectors;
}
