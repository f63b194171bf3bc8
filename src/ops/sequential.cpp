#include <algorithm>
#include <string>

#include "buffer/display.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/run_map.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/resume.h"
#include "ops/selection.h"

namespace {

void announce(const std::string& doing) {
  const std::string line = doing + " " + std::to_string(counters.No_Secs) + " sectors starting at LBA " +
                           form1.TxtStartLBA.text() + " on drive " + std::to_string(form1.SelectedDrive) + "\r\n";
  form1.Text1.set_text(line);
  PrintReport(line);
}

/// Transfers `sectors` sectors: the whole chunks, then what is left of them. Where the first chunk begins inside a
/// logical sector it is shortened, so that of the chunks only the first and the last cover logical sectors in part.
void transfer_range(bool (*transfer)(std::int64_t*, std::int64_t, std::int64_t, Events), std::int64_t lba,
                    std::int64_t sectors, std::int64_t chunk) {
  const std::int64_t end = counters.Sectors_Done + sectors;
  const std::int64_t first = chunk - behind_boundary(lba);
  if (first < chunk && chunk < sectors) transfer(&lba, first, first, Events::run);
  transfer(&lba, end - counters.Sectors_Done, chunk, Events::run);
  const std::int64_t left = end - counters.Sectors_Done;
  if (left > 0) transfer(&lba, left, left, Events::run);
}

}  // namespace

std::optional<RunPlan> plan_read() {
  const std::int64_t start = take_range();
  announce("Reading");
  remake_buffer(read_chunk(counters.No_Secs) * SectorSize, start);
  RunPlan plan{.kind = RunKind::read, .first_lba = start, .sectors = counters.No_Secs};
  plan.work = 0;
  for (const SectorRun& run : left_to_read(start, plan.sectors)) plan.work += run.sectors;
  run_map.done_before = plan.sectors - plan.work;
  counters.No_Secs = plan.work;  // what the status and the totals are about
  return plan;
}

void Seq_Read(const RunPlan& plan) {
  for (const SectorRun& run : left_to_read(plan.first_lba, plan.sectors)) {
    if (told_to_stop()) break;
    transfer_range(Read_sectors, run.first, run.sectors, read_chunk(run.sectors));
  }
}

void report_read() {
  report_end("\r\n" + time_taken());
}

std::optional<RunPlan> plan_write() {
  const std::int64_t start = take_range();
  announce("Writing");
  return RunPlan{.kind = RunKind::write, .first_lba = start, .sectors = counters.No_Secs};
}

void Seq_Write(const RunPlan& plan) {
  // One step, unlike the read's two: docs/oddities.md, 14.
  const std::int64_t chunk = std::min(plan.sectors, whole_below(kChunkSectors));
  // Behind a chunk that the buffer cannot fill, a smaller remainder would be written alone to the range's end.
  const bool refused = !may_transfer(plan.first_lba, chunk);
  transfer_range(Write_sectors, plan.first_lba, refused ? chunk : plan.sectors, chunk);
}

void report_write() {
  report_end(time_taken());
}

std::optional<RunPlan> plan_show() {
  if (asked.count == 0) form1.TxtNoSecs.set_text("1");
  return plan_read();
}

void report_show() {
  report_read();
  show_in_report(show_sectors_and_tables);
}
