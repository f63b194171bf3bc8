#include "ops/search.h"

#include <algorithm>
#include <string>

#include "buffer/display.h"
#include "buffer/hex_text.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "form/run.h"
#include "measure/measure.h"
#include "ops/frame.h"
#include "ops/range.h"
#include "ops/totals.h"
#include "platform/window.h"

namespace {

constexpr const char* kPrompt =
    "Enter  Hxx  !Hxx   Tsssss  or  tssss \r\n"
    "Examples: \r\n"
    "tlook for this - case sensitive search for 'look for this'\r\n"
    "TFindMe        - case insensitive search for 'FindMe' \r\n"
    "H0531          - looks for byte 05 hex followed by 31 hex\r\n"
    "!H2E           - look for first non-2E byte (use one byte)";

/// The search string that the user or the command line gives; empty to leave.
std::string ask_search_string() {
  if (run.op && run.find) return *run.find;
  for (;;) {
    std::string answer = ask_line(kPrompt, "Enter search letter or value", "");
    if (answer.empty()) return answer;
    const Search search = parse_search(answer);
    if (search.problem != SearchProblem::bad_prefix) return answer;
    tell_user(std::string(search.error));
  }
}

/// A place on the disk: a sector and the byte in it.
struct Place {
  std::int64_t lba = 0;
  std::int64_t offset = 0;
};

/// Where a match begins; it may end in the next sector. On a match the buffer holds that sector alone.
bool search_range(const Search& search, Place* place) {
  place->lba = take_range();
  begin_measuring({.kind = RunKind::search, .first_lba = place->lba, .sectors = counters.No_Secs});
  const std::int64_t chunk = read_chunk(counters.No_Secs);
  remake_buffer(chunk * kSectorSize, place->lba);
  if (search.problem == SearchProblem::bad_hex) {
    tell_user(std::string(search.error));
    return false;
  }
  const std::int64_t match = ReadSearchSectors(search, &place->lba, counters.No_Secs, chunk);
  if (match < 0) return false;
  place->lba += match / kSectorSize;
  place->offset = match % kSectorSize;
  remake_buffer(kSectorSize, place->lba);
  read_once(place->lba, 1);
  return true;
}

/// A search run from the command line adds its place to the variables; both empty when nothing was found.
void report_place(bool found, const Place& place) {
  if (run.op != Operation::search) return;
  const std::string variables = "\r\nSET QV_D_FOUND_LBA=" + (found ? std::to_string(place.lba) : std::string()) +
                                "\r\nSET QV_D_FOUND_OFFSET=" + (found ? std::to_string(place.offset) : std::string()) +
                                "\r\n";
  AppendReportVars(variables);
  form1.Text1.append(variables);
}

void search_disk(const std::string& search_string) {
  Clear_Counters();
  Place place;
  const bool found = search_range(parse_search(search_string), &place);
  if (form1.Exit_Requested) return;
  form1.TxtStartLBA.set_text(std::to_string(place.lba));
  const std::string stopped = "Stopped at block " + form1.TxtStartLBA.text() + "\r\n";
  const auto hex = [](std::int64_t value) { return hex_padded(static_cast<std::uint64_t>(value), 1); };
  form1.TxtStatus.set_text(found ? stopped + "Found match for " + search_string + " at address " + hex(place.offset) +
                                       " hex in buffer (0-" + hex(disk.Sec_Buf.size() - 1) + ")"
                                 : stopped + "No match for search string " + search_string);
  report_place(found, place);
  show_in_report(Display_Sec_Buf);
}

}  // namespace

std::int64_t ReadSearchSectors(const Search& search, std::int64_t* lba, std::int64_t count, std::int64_t chunk) {
  for (std::int64_t left = count; left > 0;) {
    platform::pump_events();
    if (form1.MyCancel) return -1;
    const std::int64_t sectors = std::min(left, chunk);
    if (read_once(*lba, sectors)) {
      const auto just_read = disk.Sec_Buf.bytes().first(static_cast<std::size_t>(sectors * kSectorSize));
      const std::int64_t match = find_match(search, just_read);
      if (match >= 0) return match;
    }
    show_progress_line();
    *lba = lba_after(*lba, sectors);
    left -= sectors;
  }
  platform::pump_events();  // what was pressed during the last transfer counts
  return -1;
}

void find_command() {
  const std::string search_string = ask_search_string();
  if (search_string.empty()) return;
  ShowMessage("Started HDD - READTOEND");
  form1.Text1.set_text({});
  Start_Operation();
  search_disk(search_string);
  End_Operation();
}
