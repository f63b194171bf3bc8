#include "buffer/search.h"

#include <algorithm>
#include <string>
#include <vector>

#include "buffer/display.h"
#include "buffer/hex_text.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/selection.h"
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
std::string search_string() {
  if (in_batch() && asked.find) return *asked.find;
  for (;;) {
    std::string answer = ask_line(kPrompt, "Enter search letter or value", "");
    if (answer.empty()) return answer;
    const Search search = parse_search(answer);
    if (search.problem != SearchProblem::bad_prefix) return answer;
    tell_user(std::string(search.error));
  }
}

/// The border between two chunks, over which a match may lie. Chunks of sectors of 512 bytes are searched each by
/// itself.
class Border {
 public:
  explicit Border(const Search& search) : search_(search) {
    const bool crossed = sectors_per_logical() > 1 && search.kind != SearchKind::not_equal && !search.pattern.empty();
    reach_ = crossed ? search.pattern.size() - 1 : 0;
  }

  /// The match that begins before `chunk`, the one behind the last, and ends in it: its distance, negative, from the
  /// chunk's start. Neither side holds one alone.
  std::optional<std::int64_t> match(std::span<const std::uint8_t> chunk) {
    if (reach_ == 0) return std::nullopt;
    const std::size_t reach = std::min(reach_, chunk.size());
    std::vector<std::uint8_t> both = before_;
    both.insert(both.end(), chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(reach));
    const std::int64_t position = FindStringPosinBuffer(search_, both);
    const std::int64_t start = std::ssize(before_);
    before_.assign(chunk.end() - static_cast<std::ptrdiff_t>(reach), chunk.end());
    return position == 0 ? std::nullopt : std::optional(position - 1 - start);
  }

  /// What would come before the next chunk could not be read.
  void lose() { before_.clear(); }

 private:
  const Search& search_;
  std::size_t reach_ = 0;  // bytes of a match on one side
  std::vector<std::uint8_t> before_;
};

/// Reads the match's sector into Sec_Buf. Returns why it is not there, as a sentence's end; empty if it is.
std::string read_match() {
  constexpr const char* kCancelled = "the search was cancelled before it was read again.";
  if (told_to_stop()) return kCancelled;
  const bool read = read_once(search_run.lba, 1);
  const std::string failure =
      disk.given_up ? kCancelled : "reading it again failed with " + coded_error_text(disk.Errno);
  platform::pump_events();  // what was pressed during the transfer counts
  return read ? std::string() : failure;
}

/// A search run from the command line adds its place to the variables; both empty when nothing was found.
void report_place() {
  if (!in_batch()) return;
  const SearchRun& run = search_run;
  const std::string variables =
      "\r\nSET QV_D_FOUND_LBA=" + (run.found ? std::to_string(run.lba) : std::string()) +
      "\r\nSET QV_D_FOUND_OFFSET=" + (run.found ? std::to_string(run.offset) : std::string()) + "\r\n";
  AppendReportVars(variables);
  form1.Text1.append(variables);
}

}  // namespace

std::optional<std::int64_t> ReadSearchSectors(const Search& search, std::int64_t* lba, std::int64_t count,
                                              std::int64_t chunk) {
  Border border(search);
  std::optional<std::int64_t> match;
  for (std::int64_t left = count; left > 0;) {
    platform::pump_events();
    work_between_transfers();
    if (told_to_stop()) return std::nullopt;
    const std::int64_t sectors = left > chunk ? chunk - behind_boundary(*lba) : left;
    const bool read = read_once(*lba, sectors);
    if (disk.given_up) break;
    if (read) {
      const auto just_read = disk.Sec_Buf.bytes().first(static_cast<std::size_t>(sectors * SectorSize));
      match = border.match(just_read);
      const std::int64_t position = match ? 0 : FindStringPosinBuffer(search, just_read);
      if (position > 0) match = position - 1;
      if (match) break;
    } else {
      border.lose();
    }
    show_progress_line();
    *lba = lba_after(*lba, sectors);
    left -= sectors;
  }
  platform::pump_events();  // what was pressed during the last transfer counts
  return match;
}

bool ask_search_string() {
  search_run = {.text = search_string()};
  return !search_run.text.empty();
}

std::optional<RunPlan> plan_search() {
  const std::int64_t start = take_range();
  remake_buffer(read_chunk(counters.No_Secs) * SectorSize, start);
  search_run.lba = start;
  return RunPlan{.kind = RunKind::search, .first_lba = start, .sectors = counters.No_Secs};
}

void search_range(const RunPlan& plan) {
  SearchRun& run = search_run;
  const Search search = parse_search(run.text);
  if (search.problem == SearchProblem::bad_hex) {
    tell_user(std::string(search.error));
    return;
  }
  const auto match = ReadSearchSectors(search, &run.lba, plan.sectors, read_chunk(plan.sectors));
  if (!match) return;
  run.found = true;
  const std::int64_t place = run.lba * SectorSize + *match;
  run.lba = place / SectorSize;
  run.offset = place % SectorSize;
  remake_buffer(SectorSize, run.lba);
  run.not_read = read_match();
}

void report_search() {
  const SearchRun& run = search_run;
  form1.TxtStartLBA.set_text(std::to_string(run.lba));
  const std::string stopped = "Stopped at block " + form1.TxtStartLBA.text() + "\r\n";
  const auto hex = [](std::int64_t value) { return hex_padded(static_cast<std::uint64_t>(value), 1); };
  if (!run.found) {
    form1.TxtStatus.set_text(stopped + "No match for search string " + run.text);
  } else if (run.not_read.empty()) {
    form1.TxtStatus.set_text(stopped + "Found match for " + run.text + " at address " + hex(run.offset) +
                             " hex in buffer (0-" + hex(disk.Sec_Buf.size() - 1) + ")");
  } else {
    form1.TxtStatus.set_text(stopped + "A match for " + run.text +
                             " begins in this sector, which is not in the buffer: " + run.not_read);
  }
  report_place();
  show_in_report(Display_Sec_Buf);
}
