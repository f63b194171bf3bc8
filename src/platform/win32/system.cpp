#include "platform/system.h"

#include "platform/win32/call.h"
#include "platform/win32/main_window.h"
#include "platform/win32/win_api.h"

namespace platform {

using win32::Call;
using win32::Doing;

namespace {

std::uint32_t last_error = 0;

/// Keeps the system's code of a call that failed, 0 of one that was done, for GetLastError().
bool done(BOOL ok) {
  last_error = ok != FALSE ? 0 : ::GetLastError();
  return ok != FALSE;
}

HANDLE system_handle(Handle handle) {
  return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(handle));
}

}  // namespace

Handle CreateFileA(const char* name, std::uint32_t access, std::uint32_t share_mode, std::uint32_t disposition,
                   std::uint32_t flags) {
  const Call call(Doing::call);
  HANDLE const file = ::CreateFileA(name, access, share_mode, nullptr, disposition, flags, nullptr);
  done(file != INVALID_HANDLE_VALUE ? TRUE : FALSE);
  return static_cast<Handle>(reinterpret_cast<std::intptr_t>(file));
}

bool SetFilePointerEx(Handle file, std::int64_t distance, std::int64_t* new_position, std::uint32_t method) {
  LARGE_INTEGER way{};
  LARGE_INTEGER place{};
  way.QuadPart = distance;
  const bool ok = done(::SetFilePointerEx(system_handle(file), way, &place, method));
  if (ok && new_position != nullptr) *new_position = place.QuadPart;
  return ok;
}

bool ReadFile(Handle file, void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  DWORD count = 0;
  const Call call(Doing::read);
  const bool ok = done(::ReadFile(system_handle(file), buffer, bytes, &count, nullptr));
  *moved = count;
  return ok;
}

bool WriteFile(Handle file, const void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  DWORD count = 0;
  const Call call(Doing::call);
  const bool ok = done(::WriteFile(system_handle(file), buffer, bytes, &count, nullptr));
  *moved = count;
  return ok;
}

bool LockFile(Handle file, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
              std::uint32_t bytes_high) {
  const Call call(Doing::call);
  return done(::LockFile(system_handle(file), offset_low, offset_high, bytes_low, bytes_high));
}

bool UnlockFile(Handle file, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
                std::uint32_t bytes_high) {
  const Call call(Doing::call);
  return done(::UnlockFile(system_handle(file), offset_low, offset_high, bytes_low, bytes_high));
}

bool SetEndOfFile(Handle file) {
  const Call call(Doing::call);
  return done(::SetEndOfFile(system_handle(file)) != FALSE);
}

bool FlushFileBuffers(Handle file) {
  const Call call(Doing::call);
  return done(::FlushFileBuffers(system_handle(file)));
}

bool DeviceIoControl(Handle device, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                     std::uint32_t out_bytes, std::uint32_t* returned) {
  DWORD count = 0;
  const Call call(Doing::call);
  // The system takes the request without const but does not write to it.
  const bool ok = done(
      ::DeviceIoControl(system_handle(device), code, const_cast<void*>(in), in_bytes, out, out_bytes, &count, nullptr));
  *returned = count;
  return ok;
}

bool CloseHandle(Handle handle) {
  const Call call(Doing::call);
  return done(::CloseHandle(system_handle(handle)));
}

Handle make_named_object(const char* name) {
  HANDLE const object = ::CreateMutexA(nullptr, FALSE, name);
  const std::uint32_t code = ::GetLastError();
  done(object != nullptr ? TRUE : FALSE);
  if (object == nullptr) return kInvalidHandle;
  if (code != ERROR_ALREADY_EXISTS) return static_cast<Handle>(reinterpret_cast<std::intptr_t>(object));
  ::CloseHandle(object);
  last_error = code;
  return kInvalidHandle;
}

std::uint32_t FormatMessageA(std::uint32_t flags, std::uint32_t code, char* text, std::uint32_t text_bytes) {
  const DWORD length = ::FormatMessageA(flags, nullptr, code, 0, text, text_bytes, nullptr);
  done(length != 0 ? TRUE : FALSE);
  return length;
}

std::uint32_t GetTimeZoneInformation(TimeZone* zone) {
  TIME_ZONE_INFORMATION facts{};
  const DWORD id = ::GetTimeZoneInformation(&facts);
  done(id != TIME_ZONE_ID_INVALID ? TRUE : FALSE);
  *zone = {facts.Bias, facts.StandardBias, facts.DaylightBias};
  return id;
}

bool GetVersionExA(OsVersion* version) {
  OSVERSIONINFOA facts{};
  static_assert(sizeof(facts) == 148);
  facts.dwOSVersionInfoSize = version->info_size;
  const bool ok = done(::GetVersionExA(&facts));
  if (ok) {
    version->major = facts.dwMajorVersion;
    version->minor = facts.dwMinorVersion;
    version->build = facts.dwBuildNumber;
    version->platform_id = facts.dwPlatformId;
  }
  return ok;
}

void Sleep(std::uint32_t milliseconds) {
  const Call call(Doing::call);
  ::Sleep(milliseconds);
}

void ExitProcess(std::uint32_t code) {
  win32::stop_window();
  ::ExitProcess(code);
}

std::uint32_t GetLastError() {
  return last_error;
}

std::uint32_t rehearsed_failure(const char* /*call*/, const CallFacts* /*facts*/) {
  return 0;
}

bool MoveFileExA(const char* from, const char* to, std::uint32_t flags) {
  const Call call(Doing::call);
  return done(::MoveFileExA(from, to, flags));
}

bool DeleteFileA(const char* name) {
  const Call call(Doing::call);
  return done(::DeleteFileA(name));
}

}  // namespace platform
