#include "platform/system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>

#include "platform/headless/headless.h"

namespace platform {

using headless::desktop;

namespace {

/// The Windows code (winerror.h) nearest to what the host said.
std::uint32_t code_of_errno(int number) {
  switch (number) {
    case ENOENT:
      return 2;
    case ENOTDIR:
      return 3;
    case EACCES:
    case EPERM:
    case EISDIR:
      return 5;
    case EBADF:
      return 6;
    case EROFS:
      return 19;
    case EEXIST:
      return 80;
    case EINVAL:
      return 87;
    case ENOSPC:
      return 112;
    default:
      return 31;
  }
}

bool done(bool ok) {
  desktop.last_error = ok ? 0 : code_of_errno(errno);
  return ok;
}

bool failed_with(std::uint32_t code) {
  desktop.last_error = code;
  return false;
}

/// Keeps the call; true when the script fails it.
bool scripted_failure(const char* call, const CallFacts* facts = nullptr) {
  const std::uint32_t code = rehearsed_failure(call, facts);
  desktop.last_error = code;
  return code != 0;
}

}  // namespace

std::uint32_t rehearsed_failure(const char* call, const CallFacts* facts) {
  const std::int64_t number = ++desktop.calls_made;
  if (desktop.keeps_calls) desktop.calls.emplace_back(call);
  if (desktop.keeps_calls && facts != nullptr)
    desktop.passed.push_back({call, facts->text, facts->numbers, {facts->in.begin(), facts->in.end()}});
  headless::note(call);
  // A handle is closed in destructors too, and there by the system.
  if (number >= desktop.dies_at && desktop.dies_at != 0 && std::strcmp(call, "CloseHandle") != 0) {
    desktop.dies_at = 0;
    throw headless::ProcessDied{};
  }
  return number >= desktop.fail_first && number <= desktop.fail_last ? desktop.fail_code : 0;
}

Handle CreateFileA(const char* name, std::uint32_t access, std::uint32_t share_mode, std::uint32_t disposition,
                   std::uint32_t flags) {
  const CallFacts passed{.text = name, .numbers = {access, share_mode, disposition, flags}};
  if (scripted_failure("CreateFileA", &passed)) return kInvalidHandle;
  if (std::strncmp(name, "\\\\.\\", 4) == 0) {
    desktop.last_error = 2;
    return kInvalidHandle;
  }
  int mode = O_RDONLY | O_CLOEXEC;
  if ((access & kGenericWrite) != 0) mode = ((access & kGenericRead) != 0 ? O_RDWR : O_WRONLY) | O_CLOEXEC;
  if (disposition == kCreateNew) mode |= O_CREAT | O_EXCL;
  if (disposition == kCreateAlways || disposition == kOpenAlways) mode |= O_CREAT;
  constexpr mode_t kOwnerWritesAllRead = 0644;
  const int file = ::open(name, mode, kOwnerWritesAllRead);
  if (!done(file >= 0)) return kInvalidHandle;
  struct stat facts {};
  ::fstat(file, &facts);
  // Of the share modes what the program needs: who reads and shares no writing shuts writers out.
  const bool writes = (access & kGenericWrite) != 0;
  const bool guards = writes || (share_mode & kShareWrite) == 0;
  const bool emptied = disposition == kCreateAlways && S_ISREG(facts.st_mode);
  if (S_ISDIR(facts.st_mode)) {
    failed_with(5);
  } else if (guards && ::flock(file, (writes ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
    failed_with(32);
  } else if (!emptied || done(::ftruncate(file, 0) == 0)) {
    ++desktop.open_files;
    return file;
  }
  ::close(file);
  return kInvalidHandle;
}

bool SetFilePointerEx(Handle file, std::int64_t distance, std::int64_t* new_position, std::uint32_t method) {
  if (scripted_failure("SetFilePointerEx")) return false;
  constexpr std::array<int, 3> kWhence = {SEEK_SET, SEEK_CUR, SEEK_END};
  const off_t position = ::lseek(static_cast<int>(file), distance, kWhence.at(method));
  if (position >= 0 && new_position != nullptr) *new_position = position;
  return done(position >= 0);
}

bool ReadFile(Handle file, void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  *moved = 0;
  if (scripted_failure("ReadFile")) return false;
  const ssize_t got = ::read(static_cast<int>(file), buffer, bytes);
  if (got > 0) *moved = static_cast<std::uint32_t>(got);
  return done(got >= 0);
}

bool WriteFile(Handle file, const void* buffer, std::uint32_t bytes, std::uint32_t* moved) {
  *moved = 0;
  const bool dies = desktop.calls_made + 1 == desktop.dies_at;
  if (dies) [[maybe_unused]]
    const ssize_t torn = ::write(static_cast<int>(file), buffer, std::min(bytes, desktop.torn_bytes));
  if (scripted_failure("WriteFile")) return false;
  if (desktop.cuts_writes) bytes /= 2;
  const ssize_t put = ::write(static_cast<int>(file), buffer, bytes);
  if (put > 0) *moved = static_cast<std::uint32_t>(put);
  return done(put >= 0);
}

bool LockFile(Handle /*file*/, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
              std::uint32_t bytes_high) {
  const CallFacts passed{.numbers = {offset_low, offset_high, bytes_low, bytes_high}};
  return !scripted_failure("LockFile", &passed);
}

bool UnlockFile(Handle /*file*/, std::uint32_t offset_low, std::uint32_t offset_high, std::uint32_t bytes_low,
                std::uint32_t bytes_high) {
  const CallFacts passed{.numbers = {offset_low, offset_high, bytes_low, bytes_high}};
  return !scripted_failure("UnlockFile", &passed);
}

bool SetEndOfFile(Handle file) {
  const int number = static_cast<int>(file);
  return !scripted_failure("SetEndOfFile") && done(::ftruncate(number, ::lseek(number, 0, SEEK_CUR)) == 0);
}

bool FlushFileBuffers(Handle /*file*/) {
  return !scripted_failure("FlushFileBuffers");
}

bool DeviceIoControl(Handle /*device*/, std::uint32_t code, const void* in, std::uint32_t in_bytes, void* /*out*/,
                     std::uint32_t out_bytes, std::uint32_t* returned) {
  const std::span input(static_cast<const std::uint8_t*>(in), in == nullptr ? 0 : in_bytes);
  const CallFacts passed{.numbers = {code, in_bytes, out_bytes}, .in = input};
  *returned = 0;
  return !scripted_failure("DeviceIoControl", &passed) && failed_with(50);
}

bool CloseHandle(Handle handle) {
  const bool refused = scripted_failure("CloseHandle");
  const bool closed = ::close(static_cast<int>(handle)) == 0;
  if (closed) --desktop.open_files;
  return !refused && done(closed);
}

Handle make_named_object(const char* name) {
  if (scripted_failure("CreateMutexA")) return kInvalidHandle;
  if (desktop.foreign_names.contains(name)) {
    failed_with(kAlreadyExists);
    return kInvalidHandle;
  }
  const int object = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (!done(object >= 0)) return kInvalidHandle;
  ++desktop.open_files;
  return object;
}

bool MoveFileExA(const char* from, const char* to, std::uint32_t /*flags*/) {
  return !scripted_failure("MoveFileExA") && done(std::rename(from, to) == 0);
}

bool DeleteFileA(const char* name) {
  return !scripted_failure("DeleteFileA") && done(::unlink(name) == 0);
}

std::uint32_t FormatMessageA(std::uint32_t /*flags*/, std::uint32_t code, char* text, std::uint32_t text_bytes) {
  // The system's own texts of a few codes, enough to see that they come through.
  constexpr std::array<std::pair<std::uint32_t, const char*>, 8> kTexts = {{
      {1, "Incorrect function."},
      {2, "The system cannot find the file specified."},
      {5, "Access is denied."},
      {38, "Reached the end of the file."},
      {50, "The request is not supported."},
      {112, "There is not enough space on the disk."},
      {1117, "The request could not be performed because of an I/O device error."},
      {1167, "The device is not connected."},
  }};
  const auto* const found =
      std::find_if(kTexts.begin(), kTexts.end(), [code](const auto& row) { return row.first == code; });
  if (found == kTexts.end()) {
    desktop.last_error = 317;
    return 0;
  }
  const std::string_view whole = found->second;
  const std::size_t length = std::min<std::size_t>(whole.size(), text_bytes);
  whole.copy(text, length);
  return static_cast<std::uint32_t>(length);
}

std::uint32_t GetTimeZoneInformation(TimeZone* zone) {
  *zone = desktop.zone;
  return desktop.zone_id;
}

bool GetVersionExA(OsVersion* version) {
  if (scripted_failure("GetVersionExA")) return false;
  version->major = 10;
  version->platform_id = 2;
  return true;
}

std::string system_folder() {
  return desktop.system_folder;
}

std::string volume_device(const std::string& path) {
  const bool has_letter = path.size() >= 2 && path[1] == ':';
  return has_letter ? "\\\\.\\" + path.substr(0, 2) : std::string();
}

std::string local_data_folder() {
  const char* const folder = std::getenv("LOCALAPPDATA");
  return folder == nullptr ? std::string() : folder;
}

std::string documents_folder() {
  const char* const folder = std::getenv("HOME");
  return folder == nullptr ? std::string() : folder;
}

void make_folder(const std::string& name) {
  std::error_code ignored;
  std::filesystem::create_directory(name, ignored);
}

std::vector<std::string> files_in(const std::string& folder, const std::string& prefix, const std::string& ending) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, ignored)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_regular_file() && name.starts_with(prefix) && name.ends_with(ending)) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string full_path(const std::string& name) {
  return name.starts_with(desktop.current_volume) ? name : desktop.current_volume + name;
}

void Sleep(std::uint32_t milliseconds) {
  desktop.calls.emplace_back("Sleep");
  headless::note("Sleep");
  headless::pass_time(milliseconds / 1000.0);
}

void ExitProcess(std::uint32_t code) {
  throw headless::ProcessEnded{code};
}

std::uint32_t GetLastError() {
  return desktop.last_error;
}

}  // namespace platform
