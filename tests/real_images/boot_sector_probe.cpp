#include <array>
#include <cstdio>
#include <fstream>

#include "places/boot_sector.h"

/// Prints what the boot sector at the start of a file says: file system, bytes of a cluster, clusters, and the byte at
/// which they begin.
int main(int count, char** words) {
  std::array<std::uint8_t, 512> sector{};
  std::ifstream file(count == 2 ? words[1] : "", std::ios::binary);
  file.read(reinterpret_cast<char*>(sector.data()), sector.size());
  const auto boot = decode_boot_sector(sector);
  if (!file || !boot) return 1;
  std::printf("%s %lld %lld %lld\n", file_system_name(boot->kind), static_cast<long long>(boot->bytes_per_cluster),
              static_cast<long long>(boot->clusters), static_cast<long long>(boot->heap_start));
  return 0;
}
