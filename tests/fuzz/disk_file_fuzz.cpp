#include <cstdint>
#include <cstdlib>

#include "virtualdisk/disk_file.h"

/// Whatever a disk file says, it is understood with sizes in range, or refused in one line that names file and line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace virtualdisk;
  const ParsedDisk parsed = parse_disk_file({reinterpret_cast<const char*>(data), size}, "a.vd");
  if (!parsed.error.empty()) {
    if (parsed.error.rfind("a.vd:", 0) != 0) std::abort();
    return 0;
  }
  const DiskFile& disk = parsed.disk;
  if (disk.sectors < 0 || disk.sectors > kMaxSectors || disk.model.size() > 40 || disk.serial.size() > 20) std::abort();
  for (const FailLine& line : disk.fails) {
    if (line.range.first < 0 || line.range.count < 0 || line.range.end() < line.range.first) std::abort();
  }
  return 0;
}
