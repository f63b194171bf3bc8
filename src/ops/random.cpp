#include "ops/random.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "buffer/fill.h"
#include "buffer/hex_text.h"
#include "buffer/pattern.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "form/run.h"
#include "measure/measure.h"
#include "ops/frame.h"
#include "ops/random_numbers.h"
#include "ops/random_parameters.h"
#include "ops/totals.h"
#include "ops/visit.h"
#include "platform/clock.h"
#include "platform/window.h"
#include "smart/identification.h"

RandomTest random_test;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int16_t kNothingDone = 1;  // exit code

/// The bytes of a visit; the buffer has one more, which is never transferred or compared.
std::span<std::uint8_t> visit_bytes() {
  const std::int64_t bytes = std::min(counters.No_Secs * kSectorSize, disk.Sec_Buf.size());
  return disk.Sec_Buf.bytes().first(static_cast<std::size_t>(bytes));
}

/// The sectors of a visit that a transfer can move; all transfers of a larger visit are refused.
std::int64_t movable_sectors() {
  return std::min(counters.No_Secs, kLargestTransfer);
}

void size_buffer() {
  remake_buffer(movable_sectors() * kSectorSize + 1, 0);
}

/// Takes the parameters into counters.No_Secs and random_test. False when the user leaves, or when the disk has no room
/// for a visit, which is told.
bool begin_test() {
  Clear_Counters();
  random_test = {};
  if (!take_random_parameters(&random_test.passes, &counters.No_Secs)) return false;
  if (identification.Drive_Sectors > counters.No_Secs) return true;
  report_and_show("The disk has " + std::to_string(identification.Drive_Sectors) + " sectors, a visit " +
                  std::to_string(counters.No_Secs) + ": nothing was done.\r\n");
  if (run.op) output.ExitCode = kNothingDone;
  return false;
}

std::string what_is_done() {
  return std::to_string(counters.No_Secs) + " sectors per operation, " + std::to_string(random_test.passes) +
         " passes on drive " + std::to_string(form1.SelectedDrive) + "\r\n";
}

/// What the test is about to do: `transfers` transfers to a visit, anywhere on the disk.
void begin_measure(RunKind kind, std::int64_t transfers) {
  begin_measuring({.kind = kind,
                   .sectors = identification.Drive_Sectors,
                   .work = random_test.passes * movable_sectors() * transfers});
}

/// Makes the passes, each followed by its count and the test for a cancel.
void make_visits(void (*visit)()) {
  start_timing();
  for (std::int32_t pass = 0; pass < random_test.passes; ++pass) {
    visit();
    ++random_test.Ops_Done;
    if (form1.MyCancel) break;
  }
  end_timing();
}

void report_end(const std::string& operations, const std::string& moved) {
  if (form1.Exit_Requested) return;
  report_and_show("Time taken= " + single_text(elapsed_seconds()) + " seconds for " +
                  std::to_string(random_test.Ops_Done * counters.No_Secs) + " " + operations +
                  " sector operations.\r\n" + moved + std::to_string(counters.Sectors_Done));
  Do_errors();
  form1.Text1.append("\r\nFinished!\r\n");
}

void count_compare(std::span<const std::uint8_t> written, bool read_back) {
  // One for the visit, however many bytes differ; what could not be read back differs.
  if (!read_back || count_differing(visit_bytes(), written) > 0) ++counters.TotalCErrors;
}

void read_visit() {
  std::int64_t lba = GetRandomSector(counters.No_Secs);
  Read_sectors(&lba, counters.No_Secs, counters.No_Secs);
}

using RandomPattern = std::array<std::uint8_t, 4>;

RandomPattern draw_pattern() {
  // Times 255 and cut: FF never comes; kept, so that runs give the patterns of earlier ones.
  constexpr float kValues = 255.0F;
  RandomPattern pattern{};
  for (std::uint8_t& byte : pattern) byte = static_cast<std::uint8_t>(next_uniform_single() * kValues);
  return pattern;
}

void fill_random(const RandomPattern& pattern) {
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

void write_visit() {
  Visit visit(GetRandomSector(counters.No_Secs), counters.No_Secs);
  // Drawn also for a place that is then not written to: the next places do not depend on what could be read.
  const RandomPattern pattern = draw_pattern();
  if (!visit.take_former_contents()) return;
  fill_random(pattern);
  const Bytes written(visit_bytes().begin(), visit_bytes().end());
  visit.write();
  count_compare(written, visit.read());
  visit.give_back();
}

/// What a destructive test writes at every place.
Bytes pattern_of_test;

void destructive_visit() {
  const std::int64_t lba = GetRandomSector(counters.No_Secs);
  form1.TxtStartLBA.set_text(std::to_string(lba));
  std::copy(pattern_of_test.begin(), pattern_of_test.end(), disk.Sec_Buf.data());
  std::int64_t write_lba = lba;
  measure_phase(Phase::writing);
  Write_sectors(&write_lba, counters.No_Secs, counters.No_Secs);
  if (form1.MyCancel) return;
  std::int64_t read_lba = lba;
  measure_phase(Phase::verifying);
  count_compare(pattern_of_test, Read_sectors(&read_lba, counters.No_Secs, counters.No_Secs, Events::wait));
}

}  // namespace

std::int64_t GetRandomSector(std::int64_t sectors) {
  const std::int64_t places = identification.Drive_Sectors - sectors;
  return std::min(static_cast<std::int64_t>(static_cast<double>(places) * next_uniform()), places - 1);
}

void FillRandPatt() {
  fill_random(draw_pattern());
}

void Random_Read_Test() {
  if (!begin_test()) return;
  begin_measure(RunKind::random_read, 1);
  report_and_show("Random disk read " + what_is_done());
  size_buffer();
  make_visits(read_visit);
  report_end("Read", "Total sectors read = ");
}

void Random_Write_Test() {
  if (!begin_test()) return;
  begin_measure(RunKind::random_write, 4);
  report_and_show("Random disk write " + what_is_done());
  size_buffer();
  make_visits(write_visit);
  report_end("Read-Fill-Write-Read-Compare-Write", "Total sectors read/written = ");
}

void Destructive_Random_Write_Test() {
  if (!begin_test()) return;
  form1.TxtNoSecs.set_text(std::to_string(counters.No_Secs));
  size_buffer();
  fill_buffer();
  pattern_of_test.assign(visit_bytes().begin(), visit_bytes().end());
  begin_measure(RunKind::destructive_write, 2);
  report_and_show("Destructive Random Write test to whole disk with pattern " + form1.TxtPattern.text() + ", " +
                  std::to_string(random_test.passes) + " passes, " + std::to_string(counters.No_Secs) +
                  " sectors per operation on drive " + std::to_string(form1.SelectedDrive) + "\r\n");
  make_visits(destructive_visit);
  report_end("Write-Read-Compare", "Total sectors read/written = ");
}

void random_read_command() {
  ShowMessage("Started HDD - RANDOMREAD");
  form1.Text1.set_text({});
  Start_Operation();
  Random_Read_Test();
  End_Operation();
}

void random_write_command() {
  ShowMessage("Started HDD - RANDOMWRITE");
  run_writing(Random_Write_Test);
}

void Cmd_Destructive_Random_Write() {
  if (!confirm_write("WRITE TO DRIVE?")) return;
  form1.Text1.set_text({});
  ShowMessage("Started HDD - DESTRUCTIVE RANDOMWRITE");
  run_writing(Destructive_Random_Write_Test);
}
