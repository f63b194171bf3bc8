#include "results/map_writer.h"

#include "device/whole_file.h"
#include "disk/drive.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/output.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "measure/run_map.h"
#include "ops/pinpoint.h"
#include "results/map_file.h"
#include "results/output_file.h"
#include "results/results.h"
#include "smart/identification.h"

namespace {

bool was_read(Phase phase) {
  return phase == Phase::reading || phase == Phase::searching;
}

/// The map as it stands, with what the search for bad sectors found out.
ReadMap map_now() {
  ReadMap map = run_map.map;
  if (run_findings.pinpoint.made) {
    for (const BadRange& transfer : bad_transfers()) mark(transfer.first_lba, transfer.sectors, Tried::finished, &map);
  }
  for (const BadRange& range : run_findings.bad) {
    if (range.kind == BadKind::unreadable) mark(range.first_lba, range.sectors, Tried::bad_sector, &map);
    if (range.kind == BadKind::failed_transfer) mark(range.first_lba, range.sectors, Tried::failed_transfer, &map);
  }
  return map;
}

void write_between_transfers() {
  const std::string error = write_map();
  if (!error.empty()) tell_and_show(error + " The run goes on.");
}

}  // namespace

std::string load_resumed_map() {
  if (!asked.resume) return {};
  const std::string shown = "/RESUME: \"" + *asked.resume + "\" ";
  const WholeFile read = read_whole_file(*asked.resume);
  const std::uint32_t code = read.open_code != 0 ? read.open_code : read.read_code;
  if (code != 0) return shown + "cannot be read: " + coded_error_text(code);
  MapFile file;
  const std::string problem = read_map_file(std::string(read.bytes.begin(), read.bytes.end()), &file);
  if (!problem.empty()) return shown + "is no map: " + problem;
  run_map = {.map = file.map, .resumed = true, .file = *asked.resume, .serial = file.serial, .sectors = file.sectors};
  return {};
}

void begin_map() {
  if (!asked.map) return;
  if (!run_map.resumed) run_map = {};
  between_transfers.map = {.work = write_between_transfers};
}

void note_in_map(const Transfer& transfer) {
  if (!was_read(transfer.phase)) return;
  if (run_map.map.blocks.empty()) run_map.map = untried_map(identification.Drive_Sectors);
  mark(transfer.lba, transfer.sectors, transfer.error == 0 ? Tried::finished : Tried::failed_transfer, &run_map.map);
}

std::string write_map() {
  if (!asked.map || identification.Drive_Sectors == 0) return {};
  if (run_map.map.blocks.empty()) run_map.map = untried_map(identification.Drive_Sectors);
  const MapHeader header{.version = results.version,
                         .model = identification.Disk_Model,
                         .serial = identification.Disk_Serial,
                         .logical = static_cast<int>(disk.sizes.logical),
                         .next_lba = measure.next_lba};
  return write_whole_file(*asked.map, map_text(map_now(), header), Reach::medium);
}

void end_map() {
  between_transfers.map = {};
}
