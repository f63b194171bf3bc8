#include <algorithm>
#include <string>
#include <vector>

#include "buffer/display.h"
#include "buffer/hex_text.h"
#include "buffer/pattern.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/outcome.h"
#include "form/output.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/random_choices.h"
#include "ops/visit.h"
#include "smart/identification.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int16_t kNothingDone = 1;  // exit code

/// The bytes of a visit; the buffer has one more, which is never transferred or compared.
std::span<std::uint8_t> visit_bytes() {
  const std::int64_t bytes = std::min(counters.No_Secs * SectorSize, disk.Sec_Buf.size());
  return disk.Sec_Buf.bytes().first(static_cast<std::size_t>(bytes));
}

/// The sectors of a visit that a transfer can move; all transfers of a larger visit are refused.
std::int64_t movable_sectors() {
  return std::min(counters.No_Secs, kLargestTransfer);
}

void size_buffer() {
  remake_buffer(movable_sectors() * SectorSize + 1, 0);
}

/// Takes the parameters into counters.No_Secs and random_test. False when the user leaves, or when the disk has no room
/// for a visit, which is told.
bool choose_test() {
  random_test = {};
  if (!choose_random_parameters(&random_test.passes, &counters.No_Secs)) return false;
  // On a missing drive every transfer fails and is counted.
  if (identification.Drive_Sectors == 0 || identification.Drive_Sectors >= counters.No_Secs) return true;
  const std::string line = "The disk has " + std::to_string(identification.Drive_Sectors) + " sectors, a visit " +
                           std::to_string(counters.No_Secs) + ": nothing was done.";
  report_and_show(line + "\r\n");
  end_before_transfers(Outcome::refused, line);
  if (in_batch()) output.ExitCode = kNothingDone;
  return false;
}

std::string what_is_done() {
  return std::to_string(counters.No_Secs) + " sectors per operation, " + std::to_string(random_test.passes) +
         " passes on drive " + std::to_string(form1.SelectedDrive) + "\r\n";
}

/// `transfers` transfers to a visit, anywhere on the disk.
RunPlan plan_of(RunKind kind, std::int64_t transfers) {
  return {.kind = kind,
          .sectors = std::max(identification.Drive_Sectors, counters.No_Secs),
          .work = random_test.passes * movable_sectors() * transfers};
}

/// Makes the passes, each followed by its count and the test for a cancel.
void make_visits(void (*visit)()) {
  for (std::int32_t pass = 0; pass < random_test.passes; ++pass) {
    visit();
    ++random_test.Ops_Done;
    if (told_to_stop() || visits.ended) break;
  }
}

void report_visits(const std::string& operations, const std::string& moved) {
  report_end("Time taken= " + single_text(elapsed_seconds()) + " seconds for " +
             std::to_string(random_test.Ops_Done * counters.No_Secs) + " " + operations + " sector operations.\r\n" +
             moved + std::to_string(counters.Sectors_Done));
}

/// Compares what was read back with `written`: how many bytes differ, all of them where it could not be read. One error
/// for the visit, however many do.
std::size_t count_compare(std::span<const std::uint8_t> written, bool read_back) {
  const std::size_t differing = read_back ? count_differing(visit_bytes(), written) : written.size();
  if (differing > 0) ++counters.TotalCErrors;
  return differing;
}

void read_visit() {
  std::int64_t lba = GetRandomSector(counters.No_Secs);
  Read_sectors(&lba, counters.No_Secs, counters.No_Secs);
}

void write_visit() {
  Visit visit(GetRandomSector(counters.No_Secs), counters.No_Secs);
  // Drawn also for a place that is then not written to: the next places do not depend on what could be read.
  const RandomPattern pattern = draw_pattern();
  if (!visit.take_former_contents() || !visit.record(pattern)) return;
  FillRandPatt(pattern);
  const Bytes written(visit_bytes().begin(), visit_bytes().end());
  visit.write();
  const bool read_back = visit.read();
  if (const std::size_t differing = count_compare(written, read_back)) {
    note_visit("Compare error at LBA " + std::to_string(visit.lba()) + ": " +
               (read_back ? std::to_string(differing) + " bytes differ." : "it could not be read back."));
  }
  visit.give_back();
}

void destructive_visit() {
  const std::int64_t lba = GetRandomSector(counters.No_Secs);
  form1.TxtStartLBA.set_text(std::to_string(lba));
  std::copy(random_test.pattern.begin(), random_test.pattern.end(), disk.Sec_Buf.data());
  std::int64_t write_lba = lba;
  measure_phase(Phase::writing);
  Write_sectors(&write_lba, counters.No_Secs, counters.No_Secs);
  if (told_to_stop()) return;
  std::int64_t read_lba = lba;
  measure_phase(Phase::verifying);
  count_compare(random_test.pattern, Read_sectors(&read_lba, counters.No_Secs, counters.No_Secs, Events::wait));
}

}  // namespace

void FillRandPatt(const RandomPattern& pattern) {
  // Whole patterns as long as they begin four bytes before the last index: in a buffer of whole sectors the last four
  // bytes stay as they are, in the tests' buffers, one byte longer, none of a sector's.
  const std::int64_t last_start = disk.Sec_Buf.size() - 1 - std::ssize(pattern);
  if (last_start < 0) return;
  const std::int64_t filled = (last_start / std::ssize(pattern) + 1) * std::ssize(pattern);
  fill_pattern(disk.Sec_Buf.bytes().first(static_cast<std::size_t>(filled)), pattern);
  std::string shown;
  for (const std::uint8_t byte : pattern) shown += hex_padded(byte, 1);
  form1.TxtPattern.set_text(shown);
}

std::optional<RunPlan> plan_random_read() {
  if (!choose_test()) return std::nullopt;
  report_and_show("Random disk read " + what_is_done());
  size_buffer();
  return plan_of(RunKind::random_read, 1);
}

void Random_Read_Test(const RunPlan& /*plan*/) {
  make_visits(read_visit);
}

void report_random_read() {
  report_visits("Read", "Total sectors read = ");
}

std::optional<RunPlan> plan_random_write() {
  if (!choose_test()) return std::nullopt;
  // Nothing is written to a missing drive, since nothing can be read from it.
  if (identification.Drive_Sectors > 0 && !begin_journal(movable_sectors())) return std::nullopt;
  report_and_show("Random disk write " + what_is_done());
  size_buffer();
  return plan_of(RunKind::random_write, 4);
}

void Random_Write_Test(const RunPlan& /*plan*/) {
  make_visits(write_visit);
  end_journal();
}

void report_random_write() {
  report_visits("Read-Fill-Write-Read-Compare-Write", "Total sectors read/written = ");
  count_early_end();
}

std::optional<RunPlan> plan_destructive_write() {
  if (!choose_test()) return std::nullopt;
  form1.TxtNoSecs.set_text(std::to_string(counters.No_Secs));
  size_buffer();
  if (!fill_buffer()) return std::nullopt;
  random_test.pattern.assign(visit_bytes().begin(), visit_bytes().end());
  report_and_show("Destructive Random Write test to whole disk with pattern " + form1.TxtPattern.text() + ", " +
                  std::to_string(random_test.passes) + " passes, " + std::to_string(counters.No_Secs) +
                  " sectors per operation on drive " + std::to_string(form1.SelectedDrive) + "\r\n");
  return plan_of(RunKind::destructive_write, 2);
}

void Destructive_Random_Write_Test(const RunPlan& /*plan*/) {
  make_visits(destructive_visit);
}

void report_destructive_write() {
  report_visits("Write-Read-Compare", "Total sectors read/written = ");
}
