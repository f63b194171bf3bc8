#include "ops/visit.h"

#include <algorithm>

#include "disk/drive.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/measure.h"
#include "platform/console.h"

namespace {

/// True for the codes with which the system refuses a write by itself: on a write-protected medium, or inside a volume
/// that is not locked.
bool never_sent(std::uint32_t code) {
  return code == platform::kAccessDenied || code == platform::kWriteProtect;
}

std::string nothing_written(std::uint32_t code) {
  return "Nothing was written over them: error " + std::to_string(code) + " - " + SystemErrorText(code);
}

/// True when the drive took the last write and did not bring it to its medium; a drive that knows no flush does not
/// count.
bool flush_failed() {
  constexpr std::uint32_t kNoSuchFunction = 1;  // winerror.h: ERROR_INVALID_FUNCTION
  constexpr std::uint32_t kNotSupported = 50;   // ERROR_NOT_SUPPORTED
  return disk.flush_errno != 0 && disk.flush_errno != kNoSuchFunction && disk.flush_errno != kNotSupported;
}

}  // namespace

Visit::~Visit() {
  platform::allow_shutdown();
  release_report();
}

bool Visit::take_former_contents() {
  std::int64_t lba = lba_;
  disk.Buf_Secs = 0;  // tells a read that a cancel kept from beginning
  measure_phase(Phase::reading);
  Read_sectors(&lba, sectors_, sectors_);
  platform::hold_shutdown();
  hold_report();
  if (disk.Buf_Secs == sectors_) {
    const auto bytes = disk.Sec_Buf.bytes().first(static_cast<std::size_t>(sectors_ * kSectorSize));
    saved_.assign(bytes.begin(), bytes.end());
    return true;
  }
  if (!form1.MyCancel) report_line("Not written: the former contents could not be read.");
  return false;
}

bool Visit::write() {
  std::int64_t lba = lba_;
  measure_phase(Phase::writing);
  const bool done = Write_sectors(&lba, sectors_, sectors_, Events::wait);
  refused_ = !done && never_sent(disk.Errno) ? disk.Errno : 0;
  return done;
}

bool Visit::read() {
  std::int64_t lba = lba_;
  measure_phase(Phase::verifying);
  return Read_sectors(&lba, sectors_, sectors_, Events::wait);
}

void Visit::give_back() {
  std::copy(saved_.begin(), saved_.end(), disk.Sec_Buf.data());
  std::int64_t lba = lba_;
  measure_phase(Phase::restoring);
  if (Write_sectors(&lba, sectors_, sectors_, Events::wait) && !flush_failed()) return;
  const bool untouched = refused_ != 0 && disk.Errno == refused_;
  const std::string line = "Former contents of " + std::to_string(sectors_) + " sectors at LBA " +
                           std::to_string(lba_) + " could not be written back. " +
                           (untouched ? nothing_written(refused_) : save_to_rescue_file(lba_, saved_));
  lost_places.lines.push_back(line);
  // At once, since the process may end before the report does.
  report_line(line);
  if (in_batch()) tell_at_once(line + "\r\n");
}

void report_lost_places() {
  for (const std::string& line : lost_places.lines) report_line(line);
  lost_places = {};
}
