#include "disk/whole_sectors.h"

#include <algorithm>
#include <cstring>

#include "disk/drive.h"

namespace {

std::size_t bytes_of(std::int64_t sectors) {
  return static_cast<std::size_t>(sectors * SectorSize);
}

/// Puts what somebody has read of `whole` into disk.around. False when nobody has.
bool take_known(const Stretch& whole) {
  const Disk::Known& known = disk.known;
  const std::int64_t before = whole.lba - known.lba;
  if (before < 0 || bytes_of(before + whole.sectors) > known.bytes.size()) return false;
  std::memcpy(disk.around.data(), known.bytes.data() + bytes_of(before), bytes_of(whole.sectors));
  return true;
}

/// Reads the logical sectors of `whole` that a write of `asked` covers in part alone.
bool read_ends(const Stretch& asked, const Stretch& whole) {
  const std::int64_t logical = sectors_per_logical();
  const std::int64_t last = whole.sectors - logical;
  const bool first_in_part = asked.lba != whole.lba;
  const bool last_in_part = asked.lba + asked.sectors != whole.lba + whole.sectors;
  if ((first_in_part || last == 0) && !read_whole({whole.lba, logical}, disk.around.data())) return false;
  if (!last_in_part || last == 0) return true;
  return read_whole({whole.lba + last, logical}, disk.around.data() + bytes_of(last));
}

}  // namespace

std::int64_t sectors_per_logical() {
  return disk.sizes.logical / SectorSize;
}

std::int64_t behind_boundary(std::int64_t lba) {
  return lba % sectors_per_logical();
}

std::int64_t whole_below(std::int64_t sectors) {
  return sectors - behind_boundary(sectors);
}

Stretch widened(const Stretch& asked) {
  const std::int64_t logical = sectors_per_logical();
  const std::int64_t before = behind_boundary(asked.lba);
  const std::int64_t past = behind_boundary(asked.lba + asked.sectors);
  return {asked.lba - before, before + asked.sectors + (past == 0 ? 0 : logical - past)};
}

std::span<const std::uint8_t> whole_sectors_read() {
  const Stretch asked{disk.Buf_LBA, disk.Buf_Secs};
  const Stretch whole = widened(asked);
  return (whole == asked ? disk.Sec_Buf : disk.around).bytes().first(bytes_of(whole.sectors));
}

bool compose(const Stretch& asked, const Stretch& whole) {
  disk.around.resize(whole.sectors * SectorSize);
  if (!take_known(whole) && !read_ends(asked, whole)) return false;
  std::memcpy(disk.around.data() + bytes_of(asked.lba - whole.lba), disk.Sec_Buf.data(), bytes_of(asked.sectors));
  return true;
}

std::string sector_sizes_text() {
  if (disk.sizes.logical == SectorSize) return {};
  return " (sectors of " + std::to_string(disk.sizes.logical) + " bytes: each is " +
         std::to_string(sectors_per_logical()) + " sectors of 512)";
}
