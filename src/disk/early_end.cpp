#include "disk/early_end.h"

#include <algorithm>
#include <array>

#include "disk/drive.h"
#include "disk/error_text.h"
#include "form/form1.h"
#include "form/number_text.h"

namespace {

/// Asks the selected drive for its length, which a drive that is there can tell.
bool answers() {
  constexpr std::uint32_t kGetLength = 0x7405C;  // IOCTL_DISK_GET_LENGTH_INFO, winioctl.h
  std::array<std::uint8_t, 8> length{};
  std::uint32_t returned = 0;
  return kernel32::DeviceIoControl(disk.hDrive, kGetLength, nullptr, 0, length.data(),
                                   static_cast<std::uint32_t>(length.size()), &returned);
}

}  // namespace

bool says_gone(std::uint32_t code) {
  constexpr std::array<std::uint32_t, 4> kCodes = {1167, 55, 21, 1617};
  return std::find(kCodes.begin(), kCodes.end(), code) != kCodes.end();
}

void begin_early_end(std::int64_t most_failures, std::int64_t disk_sectors) {
  early_end = {.failures_left = most_failures, .disk_sectors = disk_sectors};
}

void note_outcome(std::int64_t lba, std::uint32_t code) {
  constexpr int kEnough = 3;
  early_end.gone_in_a_row = says_gone(code) ? early_end.gone_in_a_row + 1 : 0;
  if (code == 0 || !early_end.why.empty()) return;
  if (early_end.failures_left > 0 && --early_end.failures_left == 0) {
    early_end.why = "as many transfers have failed as /STOPAFTER allows";
  }
  if (early_end.disk_sectors > 0 && lba >= early_end.disk_sectors) {
    early_end.past_end = true;
    early_end.why = "the range passes the disk's end";
  }
  if (early_end.gone_in_a_row < kEnough) return;
  early_end.gone_in_a_row = 0;
  if (!answers()) early_end.why = "the drive does not answer any more: " + trimmed(coded_error_text(code));
}

bool told_to_stop() {
  return form1.MyCancel || !early_end.why.empty();
}
