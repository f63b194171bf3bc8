#include "device/kernel32.h"

#include "virtualdisk/virtualdisk.h"

namespace kernel32 {
namespace {

/// Keeps the code of a call that a virtual disk answered.
bool keep(std::uint32_t code) {
  state.last_error = code;
  return code == 0;
}

/// Keeps the code of a call that the system answered.
bool keep_system(bool done) {
  state.last_error = done ? 0 : platform::GetLastError();
  return done;
}

/// Runs `answer` unless a rehearsal fails the call first.
template <typename Answer>
bool virtual_call(const char* call, Answer answer, const platform::CallFacts* facts = nullptr) {
  const std::uint32_t refused = platform::rehearsed_failure(call, facts);
  return keep(refused != 0 ? refused : answer());
}

}  // namespace

Handle CreateFileA(const char* name, std::uint32_t access, std::uint32_t share_mode, std::uint32_t disposition,
                   std::uint32_t flags) {
  Handle handle = kInvalidHandle;
  if (virtualdisk::disk_named(name) >= 0) {
    const platform::CallFacts facts{.text = name, .numbers = {access, share_mode, disposition, flags}};
    virtual_call(
        "CreateFileA", [&] { return virtualdisk::open(name, access, share_mode, &handle); }, &facts);
    return handle;
  }
  handle = platform::CreateFileA(name, access, share_mode, disposition, flags);
  keep_system(handle != kInvalidHandle);
  return handle;
}

Handle open_volume_of(int drive, const char* name, std::uint32_t access, std::uint32_t share_mode,
                      std::uint32_t flags) {
  if (virtualdisk::attached(drive)) return CreateFileA(name, access, share_mode, platform::kOpenExisting, flags);
  const Handle handle = platform::CreateFileA(name, access, share_mode, platform::kOpenExisting, flags);
  keep_system(handle != kInvalidHandle);
  return handle;
}

bool SetFilePointerEx(Handle file, std::int64_t distance, std::int64_t* new_position, std::uint32_t method) {
  if (virtualdisk::owns(file)) {
    return virtual_call("SetFilePointerEx", [&] { return virtualdisk::seek(file, distance, new_position, method); });
  }
  return keep_system(platform::SetFilePointerEx(file, distance, new_position, method));
}

bool ReadFile(Handle file, void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  *moved = 0;
  if (virtualdisk::owns(file)) {
    return virtual_call("ReadFile", [&] { return virtualdisk::read(file, buffer, bytes, moved); });
  }
  return keep_system(platform::ReadFile(file, buffer, bytes, moved));
}

bool WriteFile(Handle file, const void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  *moved = 0;
  if (virtualdisk::owns(file)) {
    return virtual_call("WriteFile", [&] { return virtualdisk::write(file, buffer, bytes, moved); });
  }
  return keep_system(platform::WriteFile(file, buffer, bytes, moved));
}

bool LockFile(Handle file, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
              std::uint32_t bytes_high) {
  if (virtualdisk::owns(file)) {
    const platform::CallFacts facts{.numbers = {offset_low, offset_high, bytes_low, bytes_high}};
    return virtual_call(
        "LockFile", [&] { return virtualdisk::lock(file); }, &facts);
  }
  return keep_system(platform::LockFile(file, offset_low, offset_high, bytes_low, bytes_high));
}

bool UnlockFile(Handle file, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
                std::uint32_t bytes_high) {
  if (virtualdisk::owns(file)) {
    const platform::CallFacts facts{.numbers = {offset_low, offset_high, bytes_low, bytes_high}};
    return virtual_call(
        "UnlockFile", [&] { return virtualdisk::unlock(file); }, &facts);
  }
  return keep_system(platform::UnlockFile(file, offset_low, offset_high, bytes_low, bytes_high));
}

bool FlushFileBuffers(Handle file) {
  if (virtualdisk::owns(file)) {
    return virtual_call("FlushFileBuffers", [&] { return virtualdisk::flush(file); });
  }
  return keep_system(platform::FlushFileBuffers(file));
}

bool SetEndOfFile(Handle file) {
  return keep_system(platform::SetEndOfFile(file));
}

bool DeviceIoControl(Handle device, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                     std::uint32_t out_bytes, std::uint32_t* returned) {
  *returned = 0;
  if (virtualdisk::owns(device)) {
    const std::span input(static_cast<const std::uint8_t*>(in), in == nullptr ? 0 : in_bytes);
    const platform::CallFacts facts{.numbers = {code, in_bytes, out_bytes}, .in = input};
    return virtual_call(
        "DeviceIoControl", [&] { return virtualdisk::control(device, code, in, in_bytes, out, out_bytes, returned); },
        &facts);
  }
  return keep_system(platform::DeviceIoControl(device, code, in, in_bytes, out, out_bytes, returned));
}

bool CloseHandle(Handle handle) {
  if (virtualdisk::owns(handle)) {
    // A handle is gone after its closing even where the call reports a failure.
    const std::uint32_t refused = platform::rehearsed_failure("CloseHandle");
    const std::uint32_t code = virtualdisk::close(handle);
    return keep(refused != 0 ? refused : code);
  }
  return keep_system(platform::CloseHandle(handle));
}

Handle make_named_object(const char* name) {
  const Handle object = platform::make_named_object(name);
  keep_system(object != kInvalidHandle);
  return object;
}

bool MoveFileExA(const char* from, const char* to, std::uint32_t flags) {
  return keep_system(platform::MoveFileExA(from, to, flags));
}

bool DeleteFileA(const char* name) {
  return keep_system(platform::DeleteFileA(name));
}

std::uint32_t FormatMessageA(std::uint32_t flags, std::uint32_t code, char* text, std::uint32_t text_bytes) {
  const std::uint32_t length = platform::FormatMessageA(flags, code, text, text_bytes);
  keep_system(length != 0);
  return length;
}

std::uint32_t GetTimeZoneInformation(TimeZone* zone) {
  constexpr std::uint32_t kZoneIdInvalid = 0xFFFFFFFF;
  const std::uint32_t id = platform::GetTimeZoneInformation(zone);
  keep_system(id != kZoneIdInvalid);
  return id;
}

bool GetVersionExA(OsVersion* version) {
  return keep_system(platform::GetVersionExA(version));
}

void Sleep(std::uint32_t milliseconds) {
  platform::Sleep(milliseconds);
}

void ExitProcess(std::uint32_t code) {
  platform::ExitProcess(code);
}

std::uint32_t GetLastError() {
  return state.last_error;
}

}  // namespace kernel32
