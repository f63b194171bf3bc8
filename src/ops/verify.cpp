#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "buffer/pattern.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "disk/volume.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "measure/findings.h"
#include "ops/drive_health.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/selection.h"
#include "ops/temperature.h"
#include "ops/write_guard.h"
#include "platform/clock.h"
#include "platform/window.h"
#include "smart/identification.h"

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

void announce(const std::string& title, std::int64_t start, std::int64_t sectors) {
  verify_run.pattern = pattern_text(pattern_in_field());
  report_and_show(title + "Verifying " + std::to_string(sectors) + " sectors starting at LBA " + std::to_string(start) +
                  " on drive " + std::to_string(form1.SelectedDrive) + " with pattern " + verify_run.pattern + "\r\n");
}

/// Compares the chunk that was just read from `lba` with the pattern.
void compare_chunk(std::int64_t lba, std::int64_t sectors, const Pattern& pattern) {
  const auto chunk = disk.Sec_Buf.bytes().first(static_cast<std::size_t>(sectors * SectorSize));
  const PatternDifference found = difference_from(chunk, pattern.span());
  ++verify_run.compared;
  if (found.sectors == 0) return;
  if (!verify_run.after_write) ++counters.TotalCErrors;
  ++verify_run.differing;
  if (verify_run.listed.size() == VerifyRun::kMostListed) return;
  const auto first = static_cast<std::int64_t>(found.first);
  const VerifyRun::Difference difference{lba + first / SectorSize, first % SectorSize, found.sectors};
  verify_run.listed.push_back(difference);
  report_line("Compare error at LBA " + std::to_string(difference.lba) + " byte " + std::to_string(difference.offset) +
              ": " + std::to_string(found.sectors) + " of the " + std::to_string(sectors) + " sectors from LBA " +
              std::to_string(lba) + " differ.");
}

enum class ChunkRead : std::uint8_t { done, failed, stopped };

/// Reads and compares the chunks of the range in turn, until `read` returns that it was stopped.
void compare_range(const RunPlan& plan, ChunkRead (*read)(std::int64_t lba, std::int64_t sectors)) {
  const Pattern pattern = pattern_in_field();
  std::int64_t lba = plan.first_lba;
  for (std::int64_t left = plan.sectors; left > 0;) {
    const std::int64_t sectors = written_chunk(lba, left);
    const ChunkRead how = read(lba, sectors);
    if (how == ChunkRead::stopped) return;
    if (how == ChunkRead::done) compare_chunk(lba, sectors, pattern);
    if (how == ChunkRead::failed) ++verify_run.failed;
    lba = lba_after(lba, sectors);
    left -= sectors;
  }
}

ChunkRead read_counted(std::int64_t lba, std::int64_t sectors) {
  std::int64_t next = lba;
  const bool read = Read_sectors(&next, sectors, sectors);
  if (next == lba) return ChunkRead::stopped;
  return read ? ChunkRead::done : ChunkRead::failed;
}

/// Reads without counting or measuring: counters, rates and times remain those of the write.
ChunkRead read_uncounted(std::int64_t lba, std::int64_t sectors) {
  platform::pump_events();
  work_between_transfers();
  if (told_to_stop()) return ChunkRead::stopped;
  form1.TxtStatus.set_text("Reading back " + std::to_string(sectors) + " sectors at LBA " + std::to_string(lba));
  const bool read = ReadAt(lba, sectors);
  if (disk.given_up) {
    platform::pump_events();  // the presses that abandoned it
    return ChunkRead::stopped;
  }
  const std::uint32_t code = read ? 0 : disk.Errno;
  note_outcome(lba, code);
  ReadBack& back = run_findings.read_back;
  back.done += sectors;
  note_pace(platform::steady_seconds() - back.began, back.done, &back.pace);
  if (read) return ChunkRead::done;
  if (is_of_the_drive({.lba = lba, .sectors = sectors, .code = code})) ++verify_run.failed_by_drive;
  if (verify_run.failed < static_cast<std::int64_t>(VerifyRun::kMostListed)) {
    report_line(std::to_string(sectors) + " sectors at LBA " + std::to_string(lba) +
                " could not be read back: " + coded_error_text(code));
  }
  return ChunkRead::failed;
}

/// Opens the drive that was written to again. Returns why it cannot be read back; empty if it is open.
std::string open_again() {
  const Identification written = identification;
  const SectorSizes sizes = disk.sizes;
  GetandOpenDrive();
  const bool found = Check_drv(form1.SelectedDrive);
  const bool same = identification.Disk_Model == written.Disk_Model &&
                    identification.Disk_Serial == written.Disk_Serial &&
                    identification.Drive_Sectors == written.Drive_Sectors;
  identification = written;
  disk.sizes = sizes;
  if (found && same) return {};
  close_drive();
  return "drive " + std::to_string(form1.SelectedDrive) +
         (found ? " is not the one that was written to any more" : " does not answer any more");
}

void report_more() {
  const std::int64_t more = verify_run.differing - std::ssize(verify_run.listed);
  if (more > 0) report_line(std::to_string(more) + " more chunks differ.");
}

void compare_written(const RunPlan& plan) {
  const std::string status = form1.TxtStatus.text();
  const std::int64_t shown_lba = disk.Buf_LBA;
  const std::int64_t shown_sectors = disk.Buf_Secs;
  announce("\r\n\r\nREAD BACK\r\n=========\r\n", plan.first_lba, plan.sectors);
  // End_Operation comes after the volumes were unlocked. Locked again, no file system writes while this compares.
  Lock_Unlock_All_Volumes(form1.SelectedDrive, "LOCK");
  const bool has_volumes = volumes.hVolumes[0] != 0;
  run_findings.read_back = {.running = true, .sectors = plan.sectors, .began = platform::steady_seconds()};
  begin_temperature_watch();
  compare_range(plan, read_uncounted);
  end_temperature_watch();
  run_findings.read_back.running = false;
  Lock_Unlock_All_Volumes(form1.SelectedDrive, "UNLOCK");
  report_more();
  if (has_volumes && verify_run.differing > 0) {
    report_line(
        "The drive's volumes were unlocked between the write and this comparison: Windows may have written to them.");
  }
  fill_pattern(disk.Sec_Buf.bytes(), pattern_in_field().span());
  disk.Buf_LBA = shown_lba;
  disk.Buf_Secs = shown_sectors;
  form1.TxtStatus.set_text(status);
}

/// A sum that would leave the exit code's range stays at its end: a run that found differences never ends with 0.
void add_differences_to_exit_code() {
  constexpr std::int64_t kMost = std::numeric_limits<std::int16_t>::max();
  add_to_exit_code(std::min<std::int64_t>(verify_run.differing, kMost - std::max<std::int64_t>(output.ExitCode, 0)));
}

}  // namespace

std::optional<RunPlan> plan_verify() {
  const std::int64_t start = take_range();
  verify_run = {.asked = true, .chunks = count_chunks(start, counters.No_Secs)};
  announce({}, start, counters.No_Secs);
  remake_buffer(written_chunk(0, counters.No_Secs) * SectorSize, start);
  return RunPlan{.kind = RunKind::verify, .first_lba = start, .sectors = counters.No_Secs};
}

void verify_range(const RunPlan& plan) {
  compare_range(plan, read_counted);
}

void report_verify() {
  report_more();
  report_and_show("\r\n" + time_taken());
  tell_totals();
  form1.Text1.append("\r\nFinished!\r\n");
  add_to_exit_code(counters.TotalErrors);
  add_differences_to_exit_code();
}

void verify_written(const RunPlan& plan) {
  if (!write_guard.read_back) return;
  verify_run = {.asked = true, .after_write = true, .chunks = count_chunks(plan.first_lba, plan.sectors)};
  if (told_to_stop()) {
    verify_run.not_done = form1.MyCancel ? "the write was cancelled" : "the write ended early";
    return;
  }
  end_measuring(false);
  verify_run.not_done = open_again();
  if (!verify_run.not_done.empty()) return;
  compare_written(plan);
  close_drive();
  command_end.cancelled = command_end.cancelled || form1.MyCancel;
  verify_run.stopped = std::exchange(early_end.why, {});
  add_to_exit_code(verify_run.failed);
  add_differences_to_exit_code();
  end_drive_health();  // asks and judges again, with what was read back
}
