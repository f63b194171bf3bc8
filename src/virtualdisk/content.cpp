#include "virtualdisk/content.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/system.h"
#include "platform/units.h"

namespace virtualdisk {
namespace {

constexpr std::uint32_t kNotEnoughMemory = 8;  // ERROR_NOT_ENOUGH_MEMORY, winerror.h

bool all_zero(const std::uint8_t* bytes, std::size_t size) {
  return size == 0 || (bytes[0] == 0 && std::memcmp(bytes, bytes + 1, size - 1) == 0);
}

}  // namespace

std::string Content::open_image(const std::string& name) {
  if (platform::names_device(name)) return "is a device, not a file";
  // Nobody else writes while it is attached: a report of that name would cut the image off.
  constexpr std::uint32_t kShared = platform::kShareRead;
  constexpr std::uint32_t kBoth = platform::kGenericRead | platform::kGenericWrite;
  image_ = OwnedFile(platform::CreateFileA(name.c_str(), kBoth, kShared, platform::kOpenExisting, 0));
  if (!image_.is_open()) {
    image_ =
        OwnedFile(platform::CreateFileA(name.c_str(), platform::kGenericRead, kShared, platform::kOpenExisting, 0));
    read_only_ = true;
  }
  if (!image_.is_open() || !platform::SetFilePointerEx(image_.get(), 0, &image_bytes_, platform::kFileEnd)) {
    return "cannot be opened (error " + std::to_string(platform::GetLastError()) + ")";
  }
  return image_bytes_ < SectorSize ? "holds no whole sector" : "";
}

std::uint32_t Content::image_at(std::uint64_t offset) const {
  const bool done =
      platform::SetFilePointerEx(image_.get(), static_cast<std::int64_t>(offset), nullptr, platform::kFileBegin);
  return done ? 0 : platform::GetLastError();
}

std::uint32_t Content::read(std::uint64_t offset, void* buffer, std::uint32_t bytes, std::uint32_t* moved) const {
  if (image_.is_open()) {
    const std::uint32_t code = image_at(offset);
    if (code != 0) return code;
    return platform::ReadFile(image_.get(), buffer, bytes, moved) ? 0 : platform::GetLastError();
  }
  auto* to = static_cast<std::uint8_t*>(buffer);
  for (std::uint32_t left = bytes; left > 0;) {
    const std::size_t inside = offset % kPageBytes;
    const auto part = static_cast<std::uint32_t>(std::min<std::size_t>(left, kPageBytes - inside));
    const auto page = pages_.find(offset / kPageBytes);
    if (page == pages_.end()) {
      std::memset(to, 0, part);
    } else {
      std::memcpy(to, page->second->data() + inside, part);
    }
    to += part;
    offset += part;
    left -= part;
  }
  *moved = bytes;
  return 0;
}

std::uint32_t Content::write(std::uint64_t offset, const void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  if (image_.is_open()) {
    const std::uint32_t code = image_at(offset);
    if (code != 0) return code;
    return platform::WriteFile(image_.get(), buffer, bytes, moved) ? 0 : platform::GetLastError();
  }
  const auto* from = static_cast<const std::uint8_t*>(buffer);
  try {
    for (std::uint32_t left = bytes; left > 0;) {
      const std::size_t inside = offset % kPageBytes;
      const auto part = static_cast<std::uint32_t>(std::min<std::size_t>(left, kPageBytes - inside));
      auto page = pages_.find(offset / kPageBytes);
      // Zeros over zeros stay unkept, so that a huge disk may be wiped in memory.
      if (page == pages_.end() && !all_zero(from, part)) {
        page = pages_.emplace(offset / kPageBytes, std::make_unique<MemoryPage>()).first;
      }
      if (page != pages_.end()) std::memcpy(page->second->data() + inside, from, part);
      from += part;
      offset += part;
      left -= part;
    }
  } catch (const std::bad_alloc&) {
    return kNotEnoughMemory;
  }
  *moved = bytes;
  return 0;
}

std::uint32_t Content::flush() const {
  if (!image_.is_open() || read_only_) return 0;
  return platform::FlushFileBuffers(image_.get()) ? 0 : platform::GetLastError();
}

}  // namespace virtualdisk
