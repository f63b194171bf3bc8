#pragma once

#include <cstdint>

#include "platform/system.h"

/// The system calls for everyone above: names and handles of attached virtual disks are answered by them, all others by
/// the system. Signatures, sizes and failures are those of platform/system.h; GetLastError() gives the code of the last
/// call made here, 0 after a success.
namespace kernel32 {

struct State {
  std::uint32_t last_error = 0;  // of the last call, whoever answered it
};

inline State state;

using platform::Handle;
using platform::kInvalidHandle;
using platform::OsVersion;
using platform::TimeZone;

Handle CreateFileA(const char* name, std::uint32_t access, std::uint32_t share_mode, std::uint32_t disposition,
                   std::uint32_t flags);
/// Opens the existing volume `name` ("\\.\E:") of drive `drive`: one of the virtual disk attached there, or else the
/// system's, also where another drive's virtual disk has a volume of that letter.
Handle open_volume_of(int drive, const char* name, std::uint32_t access, std::uint32_t share_mode, std::uint32_t flags);
bool SetFilePointerEx(Handle file, std::int64_t distance, std::int64_t* new_position, std::uint32_t method);
bool SetEndOfFile(Handle file);
bool ReadFile(Handle file, void* buffer, std::uint32_t bytes, std::uint32_t* moved);
bool WriteFile(Handle file, const void* buffer, std::uint32_t bytes, std::uint32_t* moved);
bool LockFile(Handle file, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
              std::uint32_t bytes_high);
bool UnlockFile(Handle file, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
                std::uint32_t bytes_high);
bool FlushFileBuffers(Handle file);
bool DeviceIoControl(Handle device, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                     std::uint32_t out_bytes, std::uint32_t* returned);
bool CloseHandle(Handle handle);
Handle make_named_object(const char* name);
bool MoveFileExA(const char* from, const char* to, std::uint32_t flags);
bool DeleteFileA(const char* name);
std::uint32_t FormatMessageA(std::uint32_t flags, std::uint32_t code, char* text, std::uint32_t text_bytes);
std::uint32_t GetTimeZoneInformation(TimeZone* zone);
bool GetVersionExA(OsVersion* version);
void Sleep(std::uint32_t milliseconds);
[[noreturn]] void ExitProcess(std::uint32_t code);
std::uint32_t GetLastError();

}  // namespace kernel32
