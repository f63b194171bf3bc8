#include "ops/resume.h"

#include "measure/run_map.h"
#include "smart/identification.h"

std::string why_no_resume() {
  if (!run_map.resumed) return {};
  const std::string map = "The map \"" + run_map.file + "\" is of ";
  const std::int64_t size = identification.Drive_Sectors;
  const std::string& serial = identification.Disk_Serial;
  if (run_map.serial && (*run_map.serial != serial || !serial_is_its_own())) {
    return map + "the drive with the serial number \"" + *run_map.serial + "\", this one has \"" + serial + "\".";
  }
  const std::int64_t told = run_map.sectors.value_or(run_map.map.sectors());
  const bool fits = run_map.sectors ? told == size : told <= size;
  if (!fits) {
    return map + "a disk of " + std::to_string(told) + " sectors, this one has " + std::to_string(size) + ".";
  }
  ReadMap whole = untried_map(size);
  for (const ReadBlock& block : run_map.map.blocks) mark(block.first, block.sectors, block.state, &whole);
  run_map.map = whole;
  return {};
}

std::vector<SectorRun> left_to_read(std::int64_t lba, std::int64_t sectors) {
  if (!run_map.resumed) return {{lba, sectors}};
  return not_done(run_map.map, lba, sectors);
}
