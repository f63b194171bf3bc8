#include "virtualdisk/volume_control.h"

#include <algorithm>

#include "platform/bytes.h"
#include "platform/units.h"
#include "virtualdisk/volume_table.h"

namespace virtualdisk {
namespace {

using In = std::span<const std::uint8_t>;
using Out = std::span<std::uint8_t>;

std::optional<Clusters> clusters_of_volume(const VirtualDisk& disk, std::size_t volume) {
  const std::optional<Range> partition = partition_of(disk, volume);
  return partition ? clusters_of(disk, *partition) : std::nullopt;
}

/// Calls `look` with each line of the volume and the clusters that it touches.
template <typename Look>
void each_owner(const VirtualDisk& disk, std::size_t volume, const Clusters& clusters, Look look) {
  for (const OwnedSectors& owned : disk.file.owned) {
    const Range touched = clusters.touched(owned.range);
    if (owned.volume == disk.file.volumes[volume].name && touched.count > 0) look(owned, touched);
  }
}

/// LOOKUP_STREAM_FROM_CLUSTER_ENTRY for one cluster, its name that of the unnamed stream; a multiple of 8 bytes.
std::vector<std::uint8_t> stream_entry(const OwnedSectors& owned, std::int64_t cluster) {
  constexpr std::size_t kNameAt = 24;
  constexpr std::uint32_t kData = 0x01000000;  // LOOKUP_STREAM_FROM_CLUSTER_ENTRY_ATTRIBUTE_DATA
  constexpr std::uint32_t kSystemFile = 0x4;   // LOOKUP_STREAM_FROM_CLUSTER_ENTRY_FLAG_FS_SYSTEM_FILE
  const std::string name = owned.path + "::$DATA";
  std::vector<std::uint8_t> entry((kNameAt + (name.size() + 1) * 2 + 7) / 8 * 8);
  bytes::put_le(entry, 4, 4, owned.metadata ? kData | kSystemFile : kData);
  bytes::put_le(entry, 16, 8, static_cast<std::uint64_t>(cluster));
  for (std::size_t i = 0; i < name.size(); ++i) entry[kNameAt + i * 2] = static_cast<std::uint8_t>(name[i]);
  return entry;
}

}  // namespace

std::uint32_t volume_extents(const VirtualDisk& disk, std::size_t volume, Out out, std::uint32_t* returned) {
  constexpr std::size_t kBytes = 32;  // VOLUME_DISK_EXTENTS with one extent
  const std::optional<Range> partition = partition_of(disk, volume);
  if (!partition) return kInvalidFunction;
  if (out.size() < kBytes) return kInsufficientBuffer;
  std::fill_n(out.begin(), kBytes, std::uint8_t{0});
  bytes::put_le(out, 0, 4, 1);
  bytes::put_le(out, 8, 4, static_cast<std::uint64_t>(disk.drive));
  bytes::put_le(out, 16, 8, static_cast<std::uint64_t>(partition->first * SectorSize));
  bytes::put_le(out, 24, 8, static_cast<std::uint64_t>(partition->count * SectorSize));
  *returned = kBytes;
  return 0;
}

std::uint32_t volume_bitmap(const VirtualDisk& disk, std::size_t volume, In in, Out out, std::uint32_t* returned) {
  constexpr std::size_t kHeader = 16;  // VOLUME_BITMAP_BUFFER
  const std::optional<Clusters> clusters = clusters_of_volume(disk, volume);
  if (!clusters) return kInvalidFunction;
  if (in.size() < 8 || bytes::le64(in, 0) >= static_cast<std::uint64_t>(clusters->count)) return kInvalidParameter;
  if (out.size() <= kHeader) return kInsufficientBuffer;
  const std::int64_t first = static_cast<std::int64_t>(bytes::le64(in, 0)) / 8 * 8;
  const std::int64_t count = clusters->count - first;
  const auto whole = static_cast<std::size_t>((count + 7) / 8);
  const Out bits = out.subspan(kHeader, std::min(whole, out.size() - kHeader));
  std::fill(bits.begin(), bits.end(), std::uint8_t{0});
  bytes::put_le(out, 0, 8, static_cast<std::uint64_t>(first));
  bytes::put_le(out, 8, 8, static_cast<std::uint64_t>(count));
  const std::int64_t end = first + static_cast<std::int64_t>(bits.size()) * 8;
  each_owner(disk, volume, *clusters, [&](const OwnedSectors& /*owned*/, const Range& touched) {
    for (std::int64_t cluster = std::max(touched.first, first); cluster < std::min(touched.end(), end); ++cluster) {
      const auto at = static_cast<std::size_t>(cluster - first);
      bits[at / 8] = static_cast<std::uint8_t>(bits[at / 8] | 1U << at % 8);
    }
  });
  *returned = static_cast<std::uint32_t>(kHeader + bits.size());
  return bits.size() < whole ? kMoreData : 0;
}

std::uint32_t lookup_streams(const VirtualDisk& disk, std::size_t volume, In in, Out out, std::uint32_t* returned) {
  constexpr std::size_t kHeader = 16;  // LOOKUP_STREAM_FROM_CLUSTER_OUTPUT, up to the next multiple of 8
  constexpr std::size_t kClusterBytes = 8;
  const std::optional<Clusters> clusters = clusters_of_volume(disk, volume);
  if (!clusters || !clusters->ntfs) return kInvalidFunction;
  if (in.size() < kClusterBytes) return kInvalidParameter;
  const std::size_t asked = bytes::le32(in, 4);
  if (asked == 0 || asked > in.size() / kClusterBytes - 1) return kInvalidParameter;
  if (out.size() < kHeader) return kInsufficientBuffer;
  std::size_t at = kHeader;
  std::size_t needed = kHeader;
  std::size_t last = 0;  // where the entry before stands
  std::uint32_t matches = 0;
  std::fill_n(out.begin(), kHeader, std::uint8_t{0});
  for (std::size_t i = 1; i <= asked; ++i) {
    const auto cluster = static_cast<std::int64_t>(bytes::le64(in, i * kClusterBytes));
    each_owner(disk, volume, *clusters, [&](const OwnedSectors& owned, const Range& touched) {
      if (cluster < touched.first || cluster >= touched.end()) return;
      const std::vector<std::uint8_t> entry = stream_entry(owned, cluster);
      ++matches;
      needed += entry.size();
      if (needed > out.size()) return;
      std::copy(entry.begin(), entry.end(), out.begin() + static_cast<std::ptrdiff_t>(at));
      if (last != 0) bytes::put_le(out, last, 4, at - last);
      last = at;
      at += entry.size();
    });
  }
  bytes::put_le(out, 0, 4, last != 0 ? kHeader : 0);
  bytes::put_le(out, 4, 4, matches);
  bytes::put_le(out, 8, 4, needed);
  *returned = static_cast<std::uint32_t>(at);
  return 0;
}

std::uint32_t read_volume(VirtualDisk& disk, std::size_t volume, std::uint64_t offset, void* buffer,
                          std::uint32_t bytes, std::uint32_t* moved) {
  const std::optional<Range> partition = partition_of(disk, volume);
  if (!partition) return kInvalidFunction;
  const auto length = static_cast<std::uint64_t>(partition->count * SectorSize);
  if (offset > length || bytes > length - offset) return kSectorNotFound;
  return read_disk(disk, static_cast<std::uint64_t>(partition->first * SectorSize) + offset, buffer, bytes, moved);
}

}  // namespace virtualdisk
