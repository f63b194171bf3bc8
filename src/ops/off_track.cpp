#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "measure/measure.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/random_choices.h"
#include "ops/visit.h"
#include "smart/identification.h"

namespace {

constexpr std::int64_t kSectors = 30;  // per operation
constexpr std::int64_t kEdgeMb = 100;
constexpr std::int64_t kEdge = kEdgeMb * 1024 * 2;  // in sectors, untested at each end
constexpr std::int64_t kGuard = 200;                // re-read on each side of a rewritten place
constexpr std::int64_t kVerified = kSectors + 2 * kGuard;
constexpr std::size_t kRemembered = 1000;
constexpr std::int64_t kSmallestDisk = 2 * kEdge;

/// The three places of a pass.
struct Places {
  std::int64_t far_away;
  std::int64_t tested;
  std::int64_t far_again;
};

std::int64_t share(std::int64_t whole, double part) {
  return static_cast<std::int64_t>(static_cast<double>(whole) * part);
}

Places next_places() {
  constexpr std::int64_t kParts = 10;
  constexpr std::int64_t kNine = 9;
  const std::int64_t size = identification.Drive_Sectors;
  const std::int64_t tenth = (size - kEdge) / kParts;
  Places places{};
  places.far_away = kEdge + share(tenth, next_uniform());
  places.tested = tenth + share((kNine * size - kEdge) / kParts, next_uniform());
  places.far_again = (size - kNine * kEdge) / kParts + share(kSectors, next_uniform());
  // On a disk of less than nine edges the last place lies before the disk: its start is as far as it goes.
  places.far_again = std::max<std::int64_t>(places.far_again, 0);
  return {whole_below(places.far_away), whole_below(places.tested), whole_below(places.far_again)};
}

/// Reads one sector elsewhere and puts the tested place's data back into the buffer's start.
void seek_to(std::int64_t lba, const Visit& visit) {
  measure_phase(Phase::reading);
  Read_sectors(&lba, 1, 1, Events::wait);
  std::copy_n(visit.former_contents().begin(), SectorSize, disk.Sec_Buf.data());
}

void make_pass(const Places& places) {
  Visit visit(places.tested, kSectors);
  if (!visit.take_former_contents() || !visit.record({})) return;
  seek_to(places.far_away, visit);
  visit.write();
  seek_to(places.far_again, visit);
  visit.give_back();
}

void verify(const std::array<std::int64_t, kRemembered>& tested) {
  measure_phase(Phase::verifying);
  for (const std::int64_t place : tested) {
    std::int64_t lba = place - kGuard;
    Read_sectors(&lba, kVerified, kVerified);
  }
}

/// Sectors that `passes` passes transfer: three times the place, two sectors elsewhere, and the verifications.
std::int64_t work_of(std::int32_t passes) {
  constexpr std::int64_t kPass = 3 * kSectors + 2;
  const std::int64_t verified = passes / std::int64_t{kRemembered} * std::int64_t{kRemembered};
  return passes * kPass + verified * kVerified;
}

void make_passes(std::int32_t passes) {
  std::array<std::int64_t, kRemembered> tested{};
  std::size_t index = 0;
  for (std::int32_t pass = 0; pass < passes; ++pass) {
    const Places places = next_places();
    tested.at(index) = places.tested;
    make_pass(places);
    if (told_to_stop() || visits.ended) return;
    ++index;
    if (index == kRemembered) {
      verify(tested);
      index = 0;
    }
  }
}

}  // namespace

std::optional<RunPlan> plan_off_track() {
  random_test = {};
  if (!choose_passes("Number of passes (2000 = approx. 3 minutes)", &random_test.passes)) return std::nullopt;
  if (identification.Drive_Sectors < kSmallestDisk) {
    report_and_show("The disk has " + std::to_string(identification.Drive_Sectors) + " sectors, the test needs " +
                    std::to_string(kSmallestDisk) + ": nothing was done.\r\n");
    return std::nullopt;
  }
  if (!begin_journal(kSectors)) return std::nullopt;
  remake_buffer(kVerified * SectorSize + 1, 0);
  counters.No_Secs = kSectors;
  form1.TxtNoSecs.set_text(std::to_string(kSectors));
  const std::string header = "Non-Destructive Off-Track Write test - " + std::to_string(random_test.passes) +
                             " passes, " + std::to_string(kSectors) + " sectors per operation on drive " +
                             std::to_string(form1.SelectedDrive) + "\r\nFirst and Last " + std::to_string(kEdgeMb) +
                             "MB not tested\r\n";
  form1.Text1.set_text(header);
  PrintReport(header);
  return RunPlan{
      .kind = RunKind::off_track, .sectors = identification.Drive_Sectors, .work = work_of(random_test.passes)};
}

void OffTrack_Write_Test(const RunPlan& /*plan*/) {
  make_passes(random_test.passes);
  end_journal();
}

void report_off_track() {
  // No "seconds" and no line end: docs/oddities.md, 9.
  report_end("Time taken= " + single_text(elapsed_seconds()) + " for " + std::to_string(counters.Sectors_Done) +
             " sectors read/written.");
  count_early_end();
}
