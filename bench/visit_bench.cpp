// What a visit of the non-destructive test costs beside its four transfers alone: the undo journal's record, and
// reading the former contents again. Arguments: a disk file whose contents may be written to, a name for the journal.
// Prints milliseconds a visit: with, without.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "disk/drive.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "journal/journal.h"
#include "ops/visit.h"
#include "smart/identification.h"
#include "virtualdisk/virtualdisk.h"

namespace {

constexpr std::int64_t kVisit = 1000;  // sectors
constexpr int kVisits = 50;
constexpr int kRounds = 9;
constexpr std::array<std::uint8_t, 4> kPattern = {1, 2, 3, 4};

void pattern_visit(std::int64_t lba) {
  Visit visit(lba, kVisit);
  if (!visit.take_former_contents() || !visit.record(kPattern)) return;
  visit.write();
  visit.read();
  visit.give_back();
}

void four_transfers(std::int64_t place) {
  for (const bool writes : {false, true, false, true}) {
    std::int64_t lba = place;
    (writes ? Write_sectors : Read_sectors)(&lba, kVisit, kVisit, Events::wait);
  }
}

double milliseconds_of(void (*visit)(std::int64_t)) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kVisits; ++i) visit(i * 2 * kVisit);
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  return taken.count() / kVisits;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 || !virtualdisk::attach(0, argv[1]).empty()) return 1;
  form1.SelectedDrive = 0;
  GetandOpenDrive();
  if (!Check_drv(0)) return 1;
  remake_buffer(kVisit * SectorSize + 1, 0);
  const DiskIdentity disk_identity{.model = identification.Disk_Model,
                                   .serial = identification.Disk_Serial,
                                   .firmware = identification.Disk_Firmware,
                                   .sectors = identification.Drive_Sectors,
                                   .file = argv[1]};
  if (!journal.create(argv[2], disk_identity, kVisit).empty()) return 1;
  std::vector<double> with;
  std::vector<double> without;
  for (int round = 0; round < kRounds; ++round) {
    without.push_back(milliseconds_of(four_transfers));
    with.push_back(milliseconds_of(pattern_visit));
  }
  if (visits.ended || !journal.finish().empty()) return 1;
  for (std::vector<double>* times : {&with, &without}) {
    std::nth_element(times->begin(), times->begin() + kRounds / 2, times->end());
  }
  std::printf("%.3f\t%.3f\n", with[kRounds / 2], without[kRounds / 2]);
  return 0;
}
