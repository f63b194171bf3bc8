#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "results/map_file.h"

/// Whatever a mapfile holds, its blocks lie one behind the other, and what is written of them is read as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MapFile file;
  if (!read_map_file({reinterpret_cast<const char*>(data), size}, &file).empty()) return 0;
  std::int64_t end = 0;
  for (const ReadBlock& block : file.map.blocks) {
    if (block.first != end || block.sectors <= 0) std::abort();
    end = block.end();
  }
  for (const SectorRun& run : not_done(file.map, 0, end)) {
    if (run.sectors <= 0) std::abort();
    mark(run.first, run.sectors, Tried::finished, &file.map);
  }
  if (!not_done(file.map, 0, end).empty()) std::abort();
  if (file.map.blocks.empty()) return 0;
  MapFile again;
  std::string serial = file.serial.value_or("");
  if (std::any_of(serial.begin(), serial.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }))
    serial = "";
  if (!read_map_file(map_text(file.map, {.version = "1", .serial = serial}), &again).empty()) std::abort();
  if (again.map.blocks != file.map.blocks || again.serial.value_or("") != serial) std::abort();
  return 0;
}
