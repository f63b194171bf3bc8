#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "virtualdisk/files.h"
#include "virtualdisk/page.h"

namespace virtualdisk {

/// What stands on a disk: an image file read and written in place, or memory that costs nothing until it is written.
///
/// Offsets are bytes. Transfers go straight between the caller's buffer and the contents and give a system error code;
/// whoever calls has checked that they lie on the disk.
class Content {
 public:
  /// Takes the image `name` for the contents, read-only where writing is refused. Gives an empty text or the reason.
  std::string open_image(const std::string& name);

  /// Bytes of the image; 0 without one.
  std::int64_t image_bytes() const { return image_bytes_; }
  bool read_only() const { return read_only_; }

  std::uint32_t read(std::uint64_t offset, void* buffer, std::uint32_t bytes, std::uint32_t* moved) const;
  std::uint32_t write(std::uint64_t offset, const void* buffer, std::uint32_t bytes, std::uint32_t* moved);
  std::uint32_t flush() const;

  /// Pages of memory in use.
  std::size_t pages() const { return pages_.size(); }

 private:
  static constexpr std::size_t kPageBytes = std::size_t{1} << 20;
  using MemoryPage = std::array<std::uint8_t, kPageBytes>;

  std::uint32_t image_at(std::uint64_t offset) const;

  OwnedFile image_;
  std::int64_t image_bytes_ = 0;
  bool read_only_ = false;
  std::unordered_map<std::uint64_t, std::unique_ptr<MemoryPage>> pages_;
};

/// The practice disk: its disk file's text; examples/practice.vd is the same.
std::string_view demo_text();

/// Writes what stands on the practice disk: a partition table and some text to find.
void fill_demo(Content& content);

}  // namespace virtualdisk
