#include "places/disk_reader.h"

#include <algorithm>

#include "device/storage_query.h"

bool DiskReader::has(std::int64_t lba) const {
  return lba >= 0 && lba < (sectors > 0 ? sectors : kMostLogical);
}

std::int64_t logical_sectors(std::uint64_t number) {
  return static_cast<std::int64_t>(std::min<std::uint64_t>(number, kMostLogical));
}

DiskReader reader_of_buffer(std::span<const std::uint8_t> bytes, std::int64_t logical) {
  DiskReader disk{.logical = logical, .sectors = 0, .read = nullptr};
  disk.held = std::ssize(bytes) / logical;
  disk.read = [bytes, logical](std::int64_t lba, std::span<std::uint8_t> to) {
    const auto held = bytes.subspan(static_cast<std::size_t>(lba * logical), to.size());
    std::copy(held.begin(), held.end(), to.begin());
    return 0U;
  };
  return disk;
}

ReadOnlyDrive::ReadOnlyDrive(int drive) {
  const std::string name = R"(\\.\PhysicalDrive)" + std::to_string(drive);
  handle_ = kernel32::CreateFileA(name.c_str(), platform::kGenericRead, platform::kShareRead | platform::kShareWrite,
                                  platform::kOpenExisting, 0);
  if (handle_ == kernel32::kInvalidHandle) code_ = std::max(kernel32::GetLastError(), 1U);
}

ReadOnlyDrive::~ReadOnlyDrive() {
  if (handle_ != kernel32::kInvalidHandle) kernel32::CloseHandle(handle_);
}

DiskReader ReadOnlyDrive::reader(std::int64_t logical) const {
  DiskReader disk{.logical = logical, .sectors = 0, .read = nullptr};
  disk.sectors = std::min(ask_size(through(handle_)) / logical, kMostLogical);
  disk.read = [handle = handle_, logical](std::int64_t lba, std::span<std::uint8_t> to) {
    return read_bytes(handle, lba * logical, to);
  };
  return disk;
}

std::uint32_t read_bytes(kernel32::Handle handle, std::int64_t offset, std::span<std::uint8_t> to) {
  constexpr std::uint32_t kEndOfFile = 38;  // winerror.h: ERROR_HANDLE_EOF
  if (!kernel32::SetFilePointerEx(handle, offset, nullptr, platform::kFileBegin)) {
    return std::max(kernel32::GetLastError(), 1U);
  }
  std::uint32_t moved = 0;
  if (!kernel32::ReadFile(handle, to.data(), static_cast<std::uint32_t>(to.size()), &moved)) {
    return std::max(kernel32::GetLastError(), 1U);
  }
  return moved < to.size() ? kEndOfFile : 0;
}
