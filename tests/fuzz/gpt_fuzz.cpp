#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "places/boot_sector.h"
#include "places/gpt.h"
#include "places/layout.h"
#include "places/mbr.h"
#include "places/table_text.h"
#include "places/volume_requests.h"

namespace {

constexpr std::int64_t kMostReads = 4 * 256 + 16;

/// The input as a disk: the first byte chooses its sector size and what is known of its length.
DiskReader disk_of(std::span<const std::uint8_t> bytes, unsigned kind, std::int64_t* reads) {
  DiskReader disk{.logical = (kind & 1U) != 0 ? 4096 : 512, .sectors = 0, .read = nullptr};
  if ((kind & 2U) == 0) disk.sectors = static_cast<std::int64_t>(bytes.size()) / disk.logical;
  disk.read = [bytes, reads, logical = disk.logical](std::int64_t lba, std::span<std::uint8_t> to) {
    if (++*reads > kMostReads || lba < 0 || lba > kMostLogical) std::abort();
    const auto at = static_cast<std::uint64_t>(lba) * static_cast<std::uint64_t>(logical);
    if (at > bytes.size() || to.size() > bytes.size() - at) return 27U;
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), to.size(), to.begin());
    return 0U;
  };
  return disk;
}

void check_boot_sector(std::span<const std::uint8_t> bytes) {
  const auto boot = decode_boot_sector(bytes);
  if (!boot) return;
  if (boot->clusters <= 0 || boot->bytes_per_cluster <= 0 || boot->heap_end() <= boot->heap_start) std::abort();
  for (const std::int64_t byte : {std::int64_t{0}, boot->fat_start, boot->fat_end, boot->heap_end()}) {
    if (own_area_name(*boot, byte).empty()) std::abort();
  }
}

}  // namespace

/// Whatever stands on a disk, its tables are read within bounds and described; so are boot sectors and what a volume
/// answers.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::span<const std::uint8_t> bytes(data + 1, size - 1);
  std::int64_t reads = 0;
  const DiskReader disk = disk_of(bytes, data[0], &reads);
  gpt_text(read_gpt(disk));
  logical_text(read_logical(disk, decode_mbr(bytes)));
  further_partitions_in(bytes, disk.logical);
  reads = 0;
  if (partitions_of(read_layout(disk), 0, 100).empty()) std::abort();
  check_boot_sector(bytes);
  if (const auto bitmap = decode_volume_bitmap(bytes)) bitmap->used(bitmap->first);
  if (const auto owners = decode_cluster_owners(bytes); owners && owners->owners.size() > owners->entries) std::abort();
  return 0;
}
