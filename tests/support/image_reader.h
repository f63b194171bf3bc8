#pragma once

#include "places/disk_reader.h"
#include "tests/support/tables.h"

/// The image as a disk; reads outside it fail with 27.
inline DiskReader reader_of(DiskImage& image) {
  DiskReader disk{.logical = image.logical, .sectors = image.sectors(), .read = nullptr};
  disk.read = [&image](std::int64_t lba, std::span<std::uint8_t> to) {
    const std::int64_t at = lba * image.logical;
    if (lba < 0 || at + static_cast<std::int64_t>(to.size()) > static_cast<std::int64_t>(image.bytes.size()))
      return 27U;
    std::copy_n(image.bytes.begin() + at, to.size(), to.begin());
    return 0U;
  };
  return disk;
}
