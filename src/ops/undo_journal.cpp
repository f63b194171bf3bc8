#include <algorithm>
#include <string>
#include <vector>

#include "disk/whole_sectors.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "journal/journal.h"
#include "journal/places.h"
#include "ops/visit.h"
#include "smart/identification.h"

namespace {

constexpr std::int16_t kNothingDone = 1;  // exit code

DiskIdentity tested_disk() {
  return {.model = identification.Disk_Model,
          .serial = identification.Disk_Serial,
          .firmware = identification.Disk_Firmware,
          .sectors = identification.Drive_Sectors,
          .file = asked.virtual_disks.at(static_cast<std::size_t>(form1.SelectedDrive))};
}

/// A journal that an interrupted test of a disk of this serial number left. What it holds would be worth nothing any
/// more once the places were tested again.
std::string left_of_this_disk() {
  const std::string name = journal_file({}, identification.Disk_Serial);
  const std::string last_part = name.substr(name.find_last_of("/\\") + 1);
  const std::vector<std::string> left = left_journals();
  const auto found =
      std::find_if(left.begin(), left.end(), [&](const std::string& file) { return file.ends_with(last_part); });
  return found == left.end() ? std::string() : *found;
}

/// Gives an empty text, or why there is no journal in `place`.
std::string make_journal(const JournalFolder& place, std::int64_t sectors) {
  if (!place.found) return place.why;
  return journal.create(journal_file(place.folder, identification.Disk_Serial), tested_disk(),
                        widened({0, sectors}).sectors);
}

bool refuse(const std::string& reason) {
  const std::string line = reason + " Nothing was done.";
  report_line(line);
  tell_user(line);
  end_before_transfers(Outcome::refused, line);
  if (in_batch()) output.ExitCode = kNothingDone;
  return false;
}

/// Asks for a folder until a journal is made in it, or for leave to go on without one.
bool ask_for_journal(std::string problem, std::int64_t sectors) {
  for (;;) {
    const std::string folder =
        ask_line(problem +
                     "\r\n\r\nThe undo journal saves what a test is about to write over, so that it can be given "
                     "back after a crash or a power failure. Folder for it, on another disk:",
                 "UNDO JOURNAL", "");
    if (folder.empty()) {
      return ask_user("Go on without an undo journal?\r\n\r\nAfter a crash or a power failure in the test up to " +
                          std::to_string(sectors) +
                          " sectors would hold its pattern, and nothing could give their "
                          "contents back.",
                      "NO UNDO JOURNAL");
    }
    problem = make_journal(named_folder(folder, form1.SelectedDrive), sectors);
    if (problem.empty()) return true;
  }
}

}  // namespace

bool begin_journal(std::int64_t sectors) {
  const std::string left = left_of_this_disk();
  if (!left.empty()) {
    const bool runs = read_journal(left).state == LeftJournal::State::in_use;
    return refuse(runs ? "A test of a disk of this serial number is running: its journal is \"" + left + "\"."
                       : "An earlier test of a disk of this serial number left the journal \"" + left +
                             "\": give its contents back with /OP:RESTORE, or delete it.");
  }
  const std::string problem = make_journal(journal_folder(form1.SelectedDrive), sectors);
  if (problem.empty()) return true;
  return in_batch() ? refuse(problem) : ask_for_journal(problem, sectors);
}

void end_journal() {
  const std::string problem = journal.finish();
  if (!problem.empty()) note_visit(problem);
}
