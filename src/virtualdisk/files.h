#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/system.h"

namespace virtualdisk {

/// Owns a system file handle; closes it when it goes.
class OwnedFile {
 public:
  OwnedFile() = default;
  explicit OwnedFile(platform::Handle handle) : handle_(handle) {}
  OwnedFile(OwnedFile&& other) noexcept : handle_(std::exchange(other.handle_, platform::kInvalidHandle)) {}
  OwnedFile& operator=(OwnedFile&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~OwnedFile();

  bool is_open() const { return handle_ != platform::kInvalidHandle; }
  platform::Handle get() const { return handle_; }

 private:
  platform::Handle handle_ = platform::kInvalidHandle;
};

/// `name` as the system finds it when it stands in the file `beside`: absolute names stay, others start at its folder.
std::string resolved(const std::string& name, const std::string& beside);

/// The last part of a path.
std::string base_name(const std::string& path);

/// The whole file into `contents`; gives an empty text or the reason. More than `most` bytes are a reason too. While
/// `held` keeps the file open nobody writes to it.
std::string read_file(const std::string& name, std::uint32_t most, std::string* contents, OwnedFile* held);

}  // namespace virtualdisk
