#include "ops/visit.h"

#include <algorithm>

#include "buffer/pattern.h"
#include "disk/drive.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "journal/journal.h"
#include "measure/measure.h"
#include "platform/console.h"

namespace {

/// True for the codes with which the system refuses a write by itself: on a write-protected medium, or inside a volume
/// that is not locked.
bool never_sent(std::uint32_t code) {
  return code == platform::kAccessDenied || code == platform::kWriteProtect;
}

/// True when the drive took the last write and did not bring it to its medium; a drive that knows no flush does not
/// count.
bool flush_failed() {
  constexpr std::uint32_t kNoSuchFunction = 1;  // winerror.h: ERROR_INVALID_FUNCTION
  constexpr std::uint32_t kNotSupported = 50;   // ERROR_NOT_SUPPORTED
  return disk.flush_errno != 0 && disk.flush_errno != kNoSuchFunction && disk.flush_errno != kNotSupported;
}

std::string where_they_are() {
  return journal.is_open() ? "They are in the file " + journal.file() + "."
                           : "They are not saved: the test ran without a journal.";
}

/// Shows a line immediately, since the process may end before its block is printed.
void show_now(const std::string& line) {
  visits.lost.push_back(line);
  form1.TxtStatus.set_text(line);
  tell_at_once(line + "\r\n");
}

}  // namespace

Visit::~Visit() {
  disk.known = {};
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
    const auto bytes = whole_sectors_read();
    saved_.assign(bytes.begin(), bytes.end());
    disk.known = {whole_.lba, saved_};
    return true;
  }
  if (!form1.MyCancel) {
    note_visit("Not written at LBA " + std::to_string(lba_) + ": the former contents could not be read.");
  }
  return false;
}

bool Visit::record(std::span<const std::uint8_t> pattern) {
  if (!journal.is_open()) return true;
  const std::string problem = journal.record(whole_.lba, saved_, pattern);
  if (problem.empty()) return true;
  journal.mark_done();  // nothing was written over them
  visits.ended = true;
  visits.uncounted = true;
  show_now("LBA " + std::to_string(lba_) + " was not written to, and the test ends: " + problem);
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

std::string Visit::why_not_verified() const {
  if (!ReadAt(lba_, sectors_)) return "could not be read again: " + coded_error_text(disk.Errno);
  const std::size_t differing = count_differing(saved_, whole_sectors_read());
  return differing == 0 ? std::string() : "differ in " + std::to_string(differing) + " bytes when read again.";
}

std::span<const std::uint8_t> Visit::former_contents() const {
  return std::span(saved_).subspan(static_cast<std::size_t>((lba_ - whole_.lba) * SectorSize),
                                   static_cast<std::size_t>(sectors_ * SectorSize));
}

void Visit::give_back() {
  const std::span<const std::uint8_t> former = former_contents();
  std::copy(former.begin(), former.end(), disk.Sec_Buf.data());
  std::int64_t lba = lba_;
  measure_phase(Phase::restoring);
  const bool written = Write_sectors(&lba, sectors_, sectors_, Events::wait);
  const bool untouched = !written && refused_ != 0 && disk.Errno == refused_;
  const bool durable = written && !flush_failed();
  const std::string problem = why_not_verified();
  if (untouched || (durable && problem.empty())) journal.mark_done();
  if (durable && problem.empty()) return;
  std::string line = "Former contents of " + std::to_string(sectors_) + " sectors at LBA " + std::to_string(lba_);
  if (durable) {
    line += " were written back, but they " + problem + " " + where_they_are();
  } else if (untouched) {
    line += " could not be written back. Nothing was written over them: " + coded_error_text(refused_);
  } else {
    const bool stand = !written && problem.empty();
    line += std::string(" could not be written back") + (stand ? ", although a read shows them there" : "") + ". " +
            where_they_are();
  }
  command_end.not_given_back = command_end.not_given_back || !untouched;
  visits.uncounted = visits.uncounted || written;
  visits.ended = true;
  show_now(line);
}

void count_early_end() {
  if (!visits.uncounted) return;
  command_end.test_ended = true;
  add_to_exit_code(1);
}

void note_visit(const std::string& line) {
  if (visits.notes.size() < Visits::kMostNotes) {
    visits.notes.push_back(line);
  } else {
    ++visits.more;
  }
}

void report_visits() {
  if (!visits.notes.empty() || !visits.lost.empty()) report_line("\r\n\r\nVISITS\r\n======");
  for (const std::string& line : visits.notes) report_line(line);
  if (visits.more > 0) report_line("... and " + std::to_string(visits.more) + " more");
  for (const std::string& line : visits.lost) report_line(line);
  visits = {};
}
