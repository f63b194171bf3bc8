#include "virtualdisk/virtualdisk.h"

#include <algorithm>
#include <memory>

#include "platform/clock.h"
#include "platform/units.h"
#include "virtualdisk/control.h"
#include "virtualdisk/disk.h"
#include "virtualdisk/state.h"
#include "virtualdisk/volume_control.h"

namespace virtualdisk {

namespace {

OpenHandle* handle_named(platform::Handle handle) {
  const auto found = state.handles.find(handle);
  return found == state.handles.end() ? nullptr : &found->second;
}

VirtualDisk& disk_of(const Target& target) {
  return *state.disks[static_cast<std::size_t>(target.drive)];
}

/// The disk goes, and the handles on it with it.
void detach(int drive) {
  std::erase_if(state.handles, [&](const auto& entry) { return entry.second.target.drive == drive; });
  state.disks[static_cast<std::size_t>(drive)] = nullptr;
}

bool is_drive_number(int drive) {
  return drive >= 0 && drive < kDriveCount;
}

/// Why `handle` can do nothing with its disk any more, or 0.
std::uint32_t trouble(const OpenHandle* open) {
  if (open == nullptr) return kInvalidHandleCode;
  return vanished(disk_of(open->target)) ? kNotConnected : 0;
}

/// The line of the first of the disk's volumes that another disk has already, as a complaint; or an empty text.
std::string taken_volume(const VirtualDisk& disk, const std::string& file) {
  for (const Volume& volume : disk.file.volumes) {
    const int owner = disk_named(R"(\\.\)" + volume.name);
    if (owner >= 0) {
      return complaint(file, volume.line, "volume " + volume.name + " is on drive " + std::to_string(owner));
    }
  }
  return {};
}

/// Why a transfer through `open` cannot begin, or 0.
std::uint32_t transfer_refused(const OpenHandle* open, std::uint32_t access) {
  if (open == nullptr) return kInvalidHandleCode;
  if (vanished(disk_of(open->target))) return kNotConnected;
  if ((open->access & access) == 0) return kAccessDenied;
  const bool readable = open->target.kind == Kind::volume && access == platform::kGenericRead;
  return open->target.kind == Kind::drive || readable ? 0 : kInvalidFunction;
}

}  // namespace

std::string attach(int drive, const std::string& file) {
  if (!is_drive_number(drive)) return "drive number must be 0 to 7: " + std::to_string(drive);
  detach(drive);
  std::string error;
  std::unique_ptr<VirtualDisk> disk = make_disk(drive, file, &error);
  if (error.empty()) error = taken_volume(*disk, file);
  if (error.empty()) state.disks[static_cast<std::size_t>(drive)] = std::move(disk);
  return error;
}

void detach_all() {
  for (int drive = 0; drive < kDriveCount; ++drive) detach(drive);
}

bool attached(int drive) {
  return is_drive_number(drive) && state.disks[static_cast<std::size_t>(drive)] != nullptr;
}

std::string image_of(int drive) {
  return attached(drive) ? state.disks[static_cast<std::size_t>(drive)]->image : std::string();
}

int disk_named(std::string_view name) {
  return target_named(name).value_or(Target{}).drive;
}

bool owns(platform::Handle handle) {
  return handle >= kFirstHandle && handle < state.next_handle;
}

std::uint32_t open(std::string_view name, std::uint32_t access, std::uint32_t /*share_mode*/,
                   platform::Handle* handle) {
  *handle = platform::kInvalidHandle;
  const std::optional<Target> target = target_named(name);
  if (!target) return kFileNotFound;
  const VirtualDisk& disk = disk_of(*target);
  if (vanished(disk)) return kNotConnected;
  if (disk.file.denied && access != 0) return kAccessDenied;
  if (target->kind == Kind::port && disk.file.bus != Bus::miniport) return kFileNotFound;
  if (target->kind == Kind::volume) {
    if (disk.file.volumes[target->volume].busy) return kSharingViolation;
    if (disk.locks[target->volume] != platform::kInvalidHandle) return kAccessDenied;
  }
  *handle = state.next_handle++;
  state.handles[*handle] = {*target, access, 0};
  return 0;
}

std::uint32_t seek(platform::Handle handle, std::int64_t distance, std::int64_t* new_position, std::uint32_t method) {
  OpenHandle* open = handle_named(handle);
  const std::uint32_t refused = trouble(open);
  if (refused != 0) return refused;
  // A drive has no end to count from, as files have.
  if (method != platform::kFileBegin && method != platform::kFileCurrent) return kInvalidParameter;
  const std::uint64_t from = method == platform::kFileCurrent ? open->position : 0;
  const std::uint64_t back = distance < 0 ? 0 - static_cast<std::uint64_t>(distance) : 0;
  if (back > from) return kNegativeSeek;
  const std::uint64_t to = from + static_cast<std::uint64_t>(distance);
  if (to > INT64_MAX) return kInvalidParameter;
  open->position = to;
  if (new_position != nullptr) *new_position = static_cast<std::int64_t>(to);
  return 0;
}

std::uint32_t read(platform::Handle handle, void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  *moved = 0;
  OpenHandle* open = handle_named(handle);
  const std::uint32_t refused = transfer_refused(open, platform::kGenericRead);
  if (refused != 0) return refused;
  VirtualDisk& disk = disk_of(open->target);
  const std::uint32_t code = open->target.kind == Kind::volume
                                 ? read_volume(disk, open->target.volume, open->position, buffer, bytes, moved)
                                 : read_disk(disk, open->position, buffer, bytes, moved);
  if (code == 0) open->position += *moved;
  return code;
}

std::uint32_t write(platform::Handle handle, const void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  *moved = 0;
  OpenHandle* open = handle_named(handle);
  const std::uint32_t refused = transfer_refused(open, platform::kGenericWrite);
  if (refused != 0) return refused;
  const std::uint32_t code = write_disk(disk_of(open->target), open->position, buffer, bytes, moved);
  if (code == 0) open->position += *moved;
  return code;
}

std::uint32_t lock(platform::Handle handle) {
  return trouble(handle_named(handle));
}

std::uint32_t unlock(platform::Handle handle) {
  return trouble(handle_named(handle));
}

std::uint32_t flush(platform::Handle handle) {
  const OpenHandle* open = handle_named(handle);
  const std::uint32_t refused = trouble(open);
  return refused != 0 ? refused : disk_of(open->target).content.flush();
}

std::uint32_t control(platform::Handle handle, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                      std::uint32_t out_bytes, std::uint32_t* returned) {
  *returned = 0;
  const OpenHandle* open = handle_named(handle);
  const std::uint32_t refused = trouble(open);
  if (refused != 0) return refused;
  // Bits 14 and 15 of a control code say what access its handle must have (winioctl.h, CTL_CODE).
  constexpr std::uint32_t kNeedsRead = 1U << 14;
  constexpr std::uint32_t kNeedsWrite = 1U << 15;
  if ((code & kNeedsRead) != 0 && (open->access & platform::kGenericRead) == 0) return kAccessDenied;
  if ((code & kNeedsWrite) != 0 && (open->access & platform::kGenericWrite) == 0) return kAccessDenied;

  const std::span request(static_cast<const std::uint8_t*>(in), in == nullptr ? 0 : in_bytes);
  const std::span reply(static_cast<std::uint8_t*>(out), out == nullptr ? 0 : out_bytes);
  VirtualDisk& disk = disk_of(open->target);
  if (disk.file.request_seconds > 0.0) platform::wait(disk.file.request_seconds, false);
  switch (open->target.kind) {
    case Kind::drive:
      return control_drive(disk, code, request, reply, returned);
    case Kind::port:
      return control_port(disk, code, request, reply, returned);
    case Kind::volume: {
      const bool may_read = (open->access & platform::kGenericRead) != 0;
      return control_volume(disk, {open->target.volume, handle, may_read}, code, request, reply, returned);
    }
  }
  return kInvalidFunction;
}

std::uint32_t close(platform::Handle handle) {
  const OpenHandle* open = handle_named(handle);
  if (open == nullptr) return kInvalidHandleCode;
  if (open->target.kind == Kind::volume) {
    platform::Handle& lock_holder = disk_of(open->target).locks[open->target.volume];
    if (lock_holder == handle) lock_holder = platform::kInvalidHandle;
  }
  state.handles.erase(handle);
  return 0;
}

int open_handles() {
  return static_cast<int>(state.handles.size());
}

std::vector<std::string> volumes(int drive) {
  std::vector<std::string> names;
  if (!attached(drive)) return names;
  for (const Volume& volume : state.disks[static_cast<std::size_t>(drive)]->file.volumes) names.push_back(volume.name);
  return names;
}

}  // namespace virtualdisk
