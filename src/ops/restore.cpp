#include "ops/restore.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "buffer/pattern.h"
#include "device/kernel32.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "journal/journal.h"
#include "journal/places.h"
#include "ops/frame.h"
#include "platform/console.h"
#include "smart/identification.h"

namespace {

constexpr std::int16_t kNothingDone = 1;  // exit code

using Bytes = std::vector<std::uint8_t>;

bool is_disk_of(const Record& record) {
  return serial_is_its_own() && identification.Disk_Serial == record.disk.serial &&
         identification.Disk_Model == record.disk.model && identification.Drive_Sectors == record.disk.sectors;
}

std::string range_text(const Record& record) {
  return "LBA " + std::to_string(record.lba) + " to " + std::to_string(record.lba + record.sectors - 1);
}

std::string disk_text(const Record& record) {
  return "(" + record.disk.model + ", serial number " + record.disk.serial + ")";
}

/// What the place of a record holds now.
struct Held {
  std::string problem;  // why it cannot be read
  std::int64_t former = 0;
  std::int64_t pattern = 0;  // of the others
  std::int64_t neither = 0;
  std::int64_t first_neither = 0;  // LBA
};

/// Reads the place on the open drive; through a buffer of its own, since nobody asked to see it.
Held look_at_place(const LeftJournal& left) {
  const Record& record = left.record;
  Held held;
  SectorBuffer shown = std::exchange(disk.Sec_Buf, {});
  disk.Sec_Buf.resize(record.sectors * SectorSize);
  if (!ReadAt(record.lba, record.sectors)) {
    held.problem = coded_error_text(disk.Errno);
  }
  const Bytes former = left.former.empty() ? Bytes(disk.Sec_Buf.bytes().size()) : left.former;
  const Bytes pattern = overwritten(record, former);
  for (std::int64_t sector = 0; held.problem.empty() && sector < record.sectors; ++sector) {
    const std::int64_t at = sector * SectorSize;
    const auto is = [&](const Bytes& expected) {
      return std::memcmp(disk.Sec_Buf.data() + at, expected.data() + at, SectorSize) == 0;
    };
    if (!left.former.empty() && is(former)) {
      ++held.former;
    } else if (!record.pattern.empty() && is(pattern)) {
      ++held.pattern;
    } else if (held.neither++ == 0) {
      held.first_neither = record.lba + sector;
    }
  }
  disk.Sec_Buf = std::move(shown);
  disk.Buf_Secs = 0;
  return held;
}

/// What is to be done with a journal, on the open drive that it names.
struct Verdict {
  bool restorable = false;
  bool needed = true;  // false: the file may go
  std::string text;
};

Verdict judge(const LeftJournal& left, int drive) {
  const std::string place =
      range_text(left.record) + " of drive " + std::to_string(drive) + " " + disk_text(left.record);
  const Held held = look_at_place(left);
  if (!held.problem.empty()) return {.text = place + " cannot be read: " + held.problem};
  if (left.state == LeftJournal::State::contents_damaged) {
    // A record is whole on its medium before the first pattern goes to the disk.
    const std::string end = held.pattern == 0 ? ": the file can be deleted." : ".";
    return {.text = "its sum is wrong, so that nothing is written. " + place + ": " + std::to_string(held.pattern) +
                    " sectors hold the test's pattern" + end};
  }
  if (held.neither > 0) {
    return {.text = place + " hold neither their former contents nor the test's pattern from LBA " +
                    std::to_string(held.first_neither) + " on (" + std::to_string(held.neither) +
                    " sectors): nothing is written."};
  }
  if (held.pattern == 0 && left.record.disk.serial.empty()) {
    return {.text = place + " hold their former contents, but another disk without a serial number may be meant."};
  }
  if (held.pattern == 0) return {.needed = false, .text = place + " hold their former contents."};
  return {.restorable = true,
          .text = place + ": " + std::to_string(held.pattern) + " of " + std::to_string(left.record.sectors) +
                  " sectors hold the pattern of an interrupted test."};
}

std::string about(const std::string& file, const std::string& text) {
  return "Journal \"" + file + "\": " + text;
}

/// Deletes a journal that nobody needs any more. Gives what became of it.
std::string deleted(const std::string& file) {
  if (kernel32::DeleteFileA(file.c_str())) return "The journal is deleted.";
  return "The journal \"" + file + "\" cannot be deleted: " + coded_error_text(kernel32::GetLastError());
}

/// True for a journal that is of no use to anybody any more, which is then deleted, or that a test is using.
bool settled(const LeftJournal& left) {
  if (left.state == LeftJournal::State::in_use) return true;
  if (left.state != LeftJournal::State::readable || left.record.state == RecordState::pending) return false;
  deleted(left.file);  // one that stays is looked at again at the next start
  return true;
}

/// The drives that are the disk of a record, and the sizes of their sectors.
struct Drives {
  std::vector<std::pair<int, SectorSizes>> found;
  bool denied = false;  // the system lets the program open none or not all
};

/// Asks every drive. The last one is left open.
Drives drives_of(const Record& record) {
  Drives drives;
  for (int drive = 0; drive < kDriveCount; ++drive) {
    OpenDrive(drive);
    const bool open = disk.hDrive != kernel32::kInvalidHandle;
    drives.denied = drives.denied || (!open && kernel32::GetLastError() == platform::kAccessDenied);
    if (Check_drv(drive) && is_disk_of(record)) drives.found.emplace_back(drive, disk.sizes);
  }
  return drives;
}

std::string why_not_one(const Drives& drives, const Record& record) {
  const std::string name = "The disk " + disk_text(record);
  if (!drives.found.empty()) return name + " is there more than once: nothing is written.";
  return name +
         (drives.denied ? " was not found, and access to a drive is denied: run as administrator." : " is not there.");
}

void look_at(const LeftJournal& left, LeftOver* over) {
  const Drives drives = drives_of(left.record);
  if (drives.found.size() != 1) {
    over->lines.push_back(about(left.file, why_not_one(drives, left.record)));
    return;
  }
  const auto [drive, sizes] = drives.found.front();
  OpenDrive(drive);
  disk.sizes = sizes;
  const Verdict verdict = judge(left, drive);
  if (!verdict.needed) {
    deleted(left.file);
    return;
  }
  over->lines.push_back(about(left.file, verdict.text));
  if (verdict.restorable) over->restorable.push_back({drive, verdict.text, left.record.disk.serial, left.file});
}

/// Ends the command without a transfer.
std::nullopt_t nothing_done(const std::string& line, std::int16_t exit_code) {
  report_line(line);
  if (exit_code != 0) tell_user(line);
  if (exit_code != 0) end_before_transfers(Outcome::refused, line);
  if (in_batch()) output.ExitCode = exit_code;
  return std::nullopt;
}

/// The journals of the selected drive, which is open and identified. `none_needed`: one of them was of no use to
/// anybody any more.
struct OwnJournals {
  std::vector<LeftJournal> needed;
  bool none_needed = false;
};

/// Looks for them; those that cannot be read are told.
OwnJournals own_journals() {
  OwnJournals ours;
  for (const std::string& file : left_journals()) {
    LeftJournal left = read_journal(file);
    if (settled(left)) {
      ours.none_needed = ours.none_needed || is_disk_of(left.record);
    } else if (left.state == LeftJournal::State::damaged) {
      report_line(about(file, left.why + ": it is left as it is."));
    } else if (is_disk_of(left.record)) {
      ours.needed.push_back(std::move(left));
    }
  }
  return ours;
}

}  // namespace

LeftOver look_for_journals() {
  LeftOver over;
  for (const std::string& file : left_journals()) {
    const LeftJournal left = read_journal(file);
    if (settled(left)) continue;
    if (left.state == LeftJournal::State::damaged) {
      over.lines.push_back(about(file, left.why + ": it is left as it is."));
    } else {
      look_at(left, &over);
    }
  }
  close_drive();
  return over;
}

std::optional<RunPlan> plan_restore() {
  restore_run = {};
  const OwnJournals journals = own_journals();
  const std::vector<LeftJournal>& ours = journals.needed;
  if (ours.empty() && journals.none_needed) {
    return nothing_done("The test of this disk was interrupted between two places: nothing is to be given back.", 0);
  }
  if (ours.empty()) {
    return nothing_done("No journal of this disk was found in " + journal_places_text() + ": nothing was done.", 1);
  }
  if (ours.size() > 1) {
    return nothing_done("There are several journals of this disk, \"" + ours[0].file + "\" and \"" + ours[1].file +
                            "\": nothing was done.",
                        kNothingDone);
  }
  const LeftJournal& left = ours.front();
  const Verdict verdict = judge(left, form1.SelectedDrive);
  if (!verdict.needed) {
    return nothing_done(verdict.text + " Nothing is to be given back. " + deleted(left.file), 0);
  }
  if (!verdict.restorable) return nothing_done(about(left.file, verdict.text), kNothingDone);
  report_line(about(left.file, verdict.text));
  restore_run = {.file = left.file, .former = left.former, .problem = {}};
  counters.No_Secs = left.record.sectors;
  remake_buffer(counters.No_Secs * SectorSize, left.record.lba);
  return RunPlan{.kind = RunKind::restore, .first_lba = left.record.lba, .sectors = counters.No_Secs};
}

void restore_contents(const RunPlan& plan) {
  platform::hold_shutdown();
  std::copy(restore_run.former.begin(), restore_run.former.end(), disk.Sec_Buf.data());
  std::int64_t lba = plan.first_lba;
  measure_phase(Phase::restoring);
  if (!Write_sectors(&lba, plan.sectors, plan.sectors, Events::wait)) {
    restore_run.problem = "could not be written back.";
  } else if (!ReadAt(plan.first_lba, plan.sectors)) {
    restore_run.problem = "could not be read again: " + coded_error_text(disk.Errno);
  } else if (const std::size_t differing = count_differing(restore_run.former, disk.Sec_Buf.bytes())) {
    restore_run.problem = "differ in " + std::to_string(differing) + " bytes when read again.";
  }
  platform::allow_shutdown();
}

void report_restore() {
  const std::string contents = "The former contents of " + std::to_string(counters.No_Secs) + " sectors ";
  if (restore_run.problem.empty()) {
    report_end(contents + "were given back and read again. " + deleted(restore_run.file) + "\r\n");
    return;
  }
  command_end.not_given_back = true;
  report_end(contents + restore_run.problem + " The journal \"" + restore_run.file + "\" stays.\r\n");
  if (counters.TotalErrors == 0) add_to_exit_code(1);
}
