#include "disk/drive.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "disk/error_text.h"
#include "form/form1.h"
#include "form/output.h"

namespace {

constexpr std::uint32_t kEndOfFile = 38;  // winerror.h: ERROR_HANDLE_EOF

bool seek(std::int64_t lba) {
  std::int64_t position = 0;
  return kernel32::SetFilePointerEx(disk.hDrive, lba * SectorSize, &position, platform::kFileBegin);
}

bool failed(std::uint32_t code) {
  disk.Errno = code;
  return false;
}

/// A transfer that the program refuses, with the code of a missing drive where there is none.
bool refuse_transfer() {
  constexpr std::uint32_t kNoDriveOpen = 6;  // winerror.h: ERROR_INVALID_HANDLE
  return failed(disk.hDrive == kernel32::kInvalidHandle ? kNoDriveOpen : kRefusedTransfer);
}

/// The two words of a range lock's length, split at 16 bits: docs/oddities.md, 18.
struct LockLength {
  std::uint32_t low;
  std::uint32_t high;
};
LockLength lock_length(std::uint32_t bytes) {
  constexpr unsigned kHalf = 16;
  const auto low = static_cast<std::int16_t>(bytes & 0xFFFF);
  return {static_cast<std::uint32_t>(std::int32_t{low}), bytes >> kHalf};
}

void report_open_failure(int n, const std::string& path, std::uint32_t code) {
  ShowMessage("Handle for " + path + " not obtained!");
  PrintReport("Disk " + std::to_string(n) + " Err=" + std::to_string(code) + "  Desc=" + open_error_text(code) +
              " Source=Sectorix");
}

}  // namespace

void remake_buffer(std::int64_t bytes, std::int64_t lba) {
  constexpr std::int64_t kShown = kShownSectors * SectorSize;
  disk.Sec_Buf.resize(bytes);
  std::memset(disk.Sec_Buf.data(), 0, static_cast<std::size_t>(std::min(bytes, kShown)));
  disk.Buf_LBA = lba;
  disk.Buf_Secs = 0;
}

void OpenDrive(int n) {
  close_drive();
  disk.sizes = {};
  const std::string path = "\\\\.\\PhysicalDrive" + std::to_string(n);
  disk.hDrive = kernel32::CreateFileA(path.c_str(), platform::kGenericRead | platform::kGenericWrite,
                                      platform::kShareRead | platform::kShareWrite, platform::kOpenExisting, 0);
  const std::uint32_t code = disk.hDrive == kernel32::kInvalidHandle ? kernel32::GetLastError() : 0;
  disk.access_denied = code == platform::kAccessDenied;
  if (code != 0) report_open_failure(n, path, code);
}

std::string access_denied_text(int n) {
  return "Drive " + std::to_string(n) +
         ": Access is denied. Start Sectorix as administrator, or from an elevated prompt.";
}

void GetandOpenDrive() {
  OpenDrive(form1.SelectedDrive);
}

void close_drive() {
  if (disk.hDrive != kernel32::kInvalidHandle) kernel32::CloseHandle(disk.hDrive);
  disk.hDrive = kernel32::kInvalidHandle;
}

bool may_transfer(std::int64_t lba, std::int64_t count) {
  constexpr std::int64_t kLastLba = std::numeric_limits<std::int64_t>::max() / SectorSize;
  return lba >= 0 && lba <= kLastLba && count >= 0 && count <= kLargestTransfer &&
         count * SectorSize <= disk.Sec_Buf.size() && widened({lba, count}).sectors <= kLargestTransfer;
}

bool read_whole(const Stretch& whole, std::uint8_t* to) {
  disk.given_up = false;
  if (!seek(whole.lba)) return failed(kernel32::GetLastError());
  const auto bytes = static_cast<std::uint32_t>(whole.sectors * SectorSize);
  std::uint32_t moved = 0;
  const bool read = kernel32::ReadFile(disk.hDrive, to, bytes, &moved);
  disk.Errno = kernel32::GetLastError();
  disk.given_up = !read && platform::take_given_up();
  if (!read) return false;
  return moved >= bytes || failed(disk.Errno != 0 ? disk.Errno : kEndOfFile);
}

bool ReadAt(std::int64_t lba, std::int64_t count) {
  disk.Buf_LBA = lba;
  disk.Buf_Secs = 0;
  disk.given_up = false;
  if (!may_transfer(lba, count)) return refuse_transfer();
  const Stretch whole = widened({lba, count});
  const bool direct = whole.sectors == count;
  if (!direct) disk.around.resize(whole.sectors * SectorSize);
  if (!read_whole(whole, (direct ? disk.Sec_Buf : disk.around).data())) return false;
  if (!direct) {
    std::memcpy(disk.Sec_Buf.data(), disk.around.data() + (lba - whole.lba) * SectorSize,
                static_cast<std::size_t>(count * SectorSize));
  }
  disk.Buf_Secs = count;
  return true;
}

bool WriteAt(std::int64_t lba, std::int64_t count) {
  disk.Buf_LBA = lba;
  disk.given_up = false;
  if (!may_transfer(lba, count)) return refuse_transfer();
  const Stretch whole = widened({lba, count});
  const bool direct = whole.sectors == count;
  if (!direct && !compose({lba, count}, whole)) return false;
  if (!seek(whole.lba)) return failed(kernel32::GetLastError());
  const auto bytes = static_cast<std::uint32_t>(whole.sectors * SectorSize);
  const auto offset = static_cast<std::uint64_t>(whole.lba * SectorSize);
  const auto offset_low = static_cast<std::uint32_t>(offset);
  const auto offset_high = static_cast<std::uint32_t>(offset >> 32U);
  const LockLength length = lock_length(bytes);
  kernel32::LockFile(disk.hDrive, offset_low, offset_high, length.low, length.high);
  std::uint32_t moved = 0;
  const bool written = kernel32::WriteFile(disk.hDrive, (direct ? disk.Sec_Buf : disk.around).data(), bytes, &moved);
  disk.Errno = kernel32::GetLastError();
  if (!written) return false;
  if (moved < bytes) return failed(disk.Errno != 0 ? disk.Errno : platform::kDiskFull);
  disk.Buf_Secs = count;
  disk.flush_errno = kernel32::FlushFileBuffers(disk.hDrive) ? 0 : kernel32::GetLastError();
  kernel32::UnlockFile(disk.hDrive, offset_low, offset_high, length.low, length.high);
  return true;
}
