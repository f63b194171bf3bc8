#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The system calls that the program makes, under their Windows names. `win32/` passes them to the system, `headless/`
/// answers them on a host without Windows. Only `device/` and `virtualdisk/` call these; everyone above goes through
/// device/kernel32.h, which knows the attached virtual disks.
///
/// Unless a line says otherwise a call returns true when the system did it; on false, GetLastError() has the system's
/// code. A call that succeeds sets the code to 0. Sizes are bytes.
namespace platform {

/// A system handle as a signed integer.
using Handle = std::int64_t;
inline constexpr Handle kInvalidHandle = -1;

// Windows SDK, winnt.h and fileapi.h.
inline constexpr std::uint32_t kGenericRead = 0x80000000;
inline constexpr std::uint32_t kGenericWrite = 0x40000000;
inline constexpr std::uint32_t kShareRead = 1;
inline constexpr std::uint32_t kShareWrite = 2;
inline constexpr std::uint32_t kCreateNew = 1;
inline constexpr std::uint32_t kCreateAlways = 2;
inline constexpr std::uint32_t kOpenExisting = 3;
inline constexpr std::uint32_t kOpenAlways = 4;
inline constexpr std::uint32_t kFileBegin = 0;
inline constexpr std::uint32_t kFileCurrent = 1;
inline constexpr std::uint32_t kFileEnd = 2;

// winerror.h: ERROR_ACCESS_DENIED, ERROR_WRITE_PROTECT, ERROR_FILE_EXISTS.
inline constexpr std::uint32_t kAccessDenied = 5;
inline constexpr std::uint32_t kWriteProtect = 19;
inline constexpr std::uint32_t kFileExists = 80;

inline constexpr std::uint32_t kAlreadyExists = 183;  // ERROR_ALREADY_EXISTS

/// What a write that was cut short means where the system gave no code: ERROR_DISK_FULL (winerror.h).
inline constexpr std::uint32_t kDiskFull = 112;

/// Opens or creates `name`; kInvalidHandle on failure.
Handle CreateFileA(const char* name, std::uint32_t access, std::uint32_t share_mode, std::uint32_t disposition,
                   std::uint32_t flags);
bool SetFilePointerEx(Handle file, std::int64_t distance, std::int64_t* new_position, std::uint32_t method);
/// Cuts the file off where its pointer stands.
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

/// Makes the named object `name` ("Global\..." for all sessions), which is there as long as a handle to it is open.
/// kInvalidHandle when it cannot be made: with kAlreadyExists when another process has it, with kAccessDenied when
/// another user has.
Handle make_named_object(const char* name);

inline constexpr std::uint32_t kReplaceExisting = 1;  // winbase.h: MOVEFILE_REPLACE_EXISTING
inline constexpr std::uint32_t kWriteThrough = 8;     // MOVEFILE_WRITE_THROUGH

/// Renames a file within its volume; with kReplaceExisting in place of one of that name.
bool MoveFileExA(const char* from, const char* to, std::uint32_t flags);
bool DeleteFileA(const char* name);

/// Writes the system's text for `code` into `text` and returns its length; 0 when the system has none.
std::uint32_t FormatMessageA(std::uint32_t flags, std::uint32_t code, char* text, std::uint32_t text_bytes);

/// TIME_ZONE_INFORMATION's three biases, in minutes; UTC = local time + bias.
struct TimeZone {
  std::int32_t bias = 0;
  std::int32_t standard_bias = 0;
  std::int32_t daylight_bias = 0;
};
/// Returns the system's zone id: 0 no daylight time, 1 standard time, 2 daylight time in force, 0xFFFFFFFF failure.
std::uint32_t GetTimeZoneInformation(TimeZone* zone);

/// The fields of OSVERSIONINFOA that anyone reads.
struct OsVersion {
  std::uint32_t info_size = 148;  // dwOSVersionInfoSize: the size of the ANSI record
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
  std::uint32_t build = 0;
  std::uint32_t platform_id = 0;
};
bool GetVersionExA(OsVersion* version);

void Sleep(std::uint32_t milliseconds);

/// Ends the process with `code`. The headless platform throws ProcessEnded (headless/headless.h) instead.
[[noreturn]] void ExitProcess(std::uint32_t code);

std::uint32_t GetLastError();

/// The folder that Windows runs from; empty when the system does not tell.
std::string system_folder();

/// The device of the volume on which `path` lies, mounted folders followed, in a form that can be opened
/// ("\\?\Volume{...}"); the share's name for one of another computer; empty when the system does not tell.
std::string volume_device(const std::string& path);

/// The folder of the user's local application data; empty when the system names none.
std::string local_data_folder();

/// The folder of the user's documents; empty where the system does not tell.
std::string documents_folder();

/// Makes the folder `name` in an existing one; nothing where there is one.
void make_folder(const std::string& name);

/// The names of the files in `folder`, given with its last separator or empty for the current one, that begin with
/// `prefix` and end with `ending`, in the order of their letters. Empty where they cannot be listed.
std::vector<std::string> files_in(const std::string& folder, const std::string& prefix, const std::string& ending);

/// `name` as a whole path, as "C:\folder\file"; `name` itself where the system does not tell.
std::string full_path(const std::string& name);

/// True for names that the system gives to devices, in either case and with either slash: those of the device spaces
/// ("\\.\PhysicalDrive0", "\\?\C:", "\??\C:"), and those that it keeps in every folder, whatever their extension
/// ("NUL", "com1.csv"; Windows, "Naming Files, Paths, and Namespaces").
bool names_device(std::string_view name);

/// A read that the user gave up while it did not come back fails with this: ERROR_OPERATION_ABORTED (winerror.h).
inline constexpr std::uint32_t kGivenUp = 995;

/// What a call passes to the system, for the headless platform to record.
struct CallFacts {
  const char* text = "";                   // a name, moniker or query
  std::array<std::uint32_t, 4> numbers{};  // flags, codes and lengths in the order of the call's parameters
  std::span<const std::uint8_t> in = {};   // DeviceIoControl's input
};

/// Called before a call that an attached virtual disk answers. Returns the system error with which the call is to
/// fail, or 0 to let the disk answer. On Windows always 0. The headless platform records the call with its `facts`, if
/// any, and may fail it like its own calls, so that a test reaches every error path of a run.
std::uint32_t rehearsed_failure(const char* call, const CallFacts* facts = nullptr);

}  // namespace platform
