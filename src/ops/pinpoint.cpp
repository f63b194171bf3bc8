#include "ops/pinpoint.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "ops/drive_health.h"
#include "platform/clock.h"
#include "platform/window.h"

namespace {

constexpr double kMilliseconds = 1000.0;

/// How the drive answered a read.
struct Answer {
  bool read = false;
  bool late = false;
  std::uint32_t code = 0;
  double milliseconds = 0.0;

  bool is_bad() const { return !read || late; }
};

/// One search. Sectors that were read by themselves stand under their LBA.
struct Hunt {
  SectorBuffer buffer;
  double began = 0.0;
  std::int64_t errors = 0;
  std::map<std::int64_t, Answer> bad;
  std::vector<BadRange> unsplit;
};

void sort_by_lba(std::vector<BadRange>* ranges) {
  std::stable_sort(ranges->begin(), ranges->end(),
                   [](const BadRange& a, const BadRange& b) { return a.first_lba < b.first_lba; });
}

/// Why the search ends here; empty while it goes on. What the user pressed is dealt with before.
std::string why_ended(const Hunt& hunt) {
  show_progress_line();
  platform::pump_events();
  work_between_transfers();
  if (form1.MyCancel) return "cancelled";
  if (platform::steady_seconds() - hunt.began >= asked.pinpoint_seconds)
    return "its time of " + std::to_string(asked.pinpoint_seconds) + " s was over";
  if (hunt.errors >= asked.pinpoint_errors) return std::to_string(asked.pinpoint_errors) + " reads had failed";
  return {};
}

bool is_late(const Stretch& what, double seconds) {
  const Transfer read{.phase = measure.phase, .sectors = what.sectors, .seconds = seconds};
  const double usual = usual_seconds(read, measure.usual).value_or(0.0);
  return is_stalled({.beyond = seconds - usual});
}

/// Reads whole logical sectors. Nothing once the search has ended.
std::optional<Answer> ask(const Stretch& what, Hunt* hunt) {
  Pinpoint& told = run_findings.pinpoint;
  if (told.stopped.empty()) told.stopped = why_ended(*hunt);
  if (!told.stopped.empty()) return std::nullopt;
  form1.TxtStatus.set_text("Pinpointing at sector " + std::to_string(what.lba) + ": transfer " +
                           std::to_string(told.looked_at + 1) + " of " + std::to_string(told.suspects));
  hunt->buffer.resize(std::max(what.sectors * SectorSize, hunt->buffer.size()));
  const double start = platform::steady_seconds();
  Answer answer;
  answer.read = read_whole(what, hunt->buffer.data());
  const double seconds = platform::steady_seconds() - start;
  ++told.reads;
  answer.milliseconds = seconds * kMilliseconds;
  if (disk.given_up) {
    told.stopped = "cancelled";
    return std::nullopt;
  }
  answer.code = answer.read ? 0 : disk.Errno;
  answer.late = answer.read && is_late(what, seconds);
  if (!answer.read && says_gone(answer.code)) {
    told.stopped = "the drive does not answer: " + trimmed(coded_error_text(answer.code));
    return std::nullopt;
  }
  hunt->errors += answer.read ? 0 : 1;
  return answer;
}

/// Reads the logical sector at `lba` and keeps what is bad. True where it is, or where nothing is asked any more.
bool is_bad_sector(std::int64_t lba, Hunt* hunt) {
  const std::optional<Answer> answer = ask({lba, sectors_per_logical()}, hunt);
  if (!answer) return true;
  if (answer->is_bad()) hunt->bad[lba] = *answer;
  return answer->is_bad();
}

/// True where five sectors between two late ones, evenly apart, are late as well: all between them count as late.
bool all_late_between(std::int64_t first, std::int64_t last, Hunt* hunt) {
  constexpr std::int64_t kSamples = 5;
  const std::int64_t unit = sectors_per_logical();
  const std::int64_t between = (last - first) / unit - 1;
  if (between <= kSamples || !hunt->bad[first].late || !hunt->bad[last].late) return false;
  for (std::int64_t i = 1; i <= kSamples; ++i) {
    const std::int64_t lba = first + (between + 1) * i / (kSamples + 1) * unit;
    if (!is_bad_sector(lba, hunt) || !run_findings.pinpoint.stopped.empty() || !hunt->bad[lba].late) return false;
  }
  for (std::int64_t lba = first + unit; lba < last; lba += unit) hunt->bad.try_emplace(lba, hunt->bad[first]);
  return true;
}

/// Sectors that failed get a second chance, the last ones first.
void ask_again(std::int64_t first, std::int64_t last, Hunt* hunt) {
  for (std::int64_t lba = last; lba >= first; lba -= sectors_per_logical()) {
    const auto found = hunt->bad.find(lba);
    if (found == hunt->bad.end() || found->second.read) continue;
    const std::optional<Answer> answer = ask({lba, sectors_per_logical()}, hunt);
    if (!answer) return;
    Answer& kept = found->second;
    kept.milliseconds = std::max(kept.milliseconds, answer->milliseconds);
    if (answer->read) kept = {.read = true, .late = true, .code = 0, .milliseconds = kept.milliseconds};
  }
}

/// Looks at each sector of a bad piece. True when it found one.
bool read_singly(const Stretch& piece, Hunt* hunt) {
  const std::int64_t unit = sectors_per_logical();
  std::int64_t first = piece.lba;
  std::int64_t last = piece.lba + piece.sectors - unit;
  while (first <= last && !is_bad_sector(first, hunt)) first += unit;
  if (first > last) return false;
  while (last > first && !is_bad_sector(last, hunt)) last -= unit;
  if (run_findings.pinpoint.stopped.empty() && !all_late_between(first, last, hunt)) {
    for (std::int64_t lba = first + unit; lba < last; lba += unit) {
      if (!hunt->bad.contains(lba)) is_bad_sector(lba, hunt);
    }
  }
  ask_again(first, last, hunt);
  return true;
}

/// Puts the bad halves of a bad piece on the stack. False when the search ended.
bool halve(const Stretch& piece, std::vector<Stretch>* pieces, Hunt* hunt) {
  const Stretch left{piece.lba, whole_below(piece.sectors / 2)};
  const Stretch right{piece.lba + left.sectors, piece.sectors - left.sectors};
  const std::optional<Answer> first = ask(left, hunt);
  if (!first) return false;
  bool right_is_bad = true;
  if (first->is_bad()) {
    const std::optional<Answer> second = ask(right, hunt);
    if (!second) return false;
    right_is_bad = second->is_bad();
  }
  if (right_is_bad) pieces->push_back(right);
  if (first->is_bad()) pieces->push_back(left);
  return true;
}

/// What of a transfer nobody came to split.
void keep_unsplit(const BadRange& transfer, const std::vector<Stretch>& pieces, Hunt* hunt) {
  for (const Stretch& piece : pieces) {
    BadRange rest = transfer;
    rest.first_lba = std::max(piece.lba, transfer.first_lba);
    const std::int64_t end = std::min(piece.lba + piece.sectors, transfer.end_lba());
    // Around the sectors that are known to be bad.
    for (auto bad = hunt->bad.lower_bound(rest.first_lba); bad != hunt->bad.end() && bad->first < end; ++bad) {
      rest.sectors = bad->first - rest.first_lba;
      if (rest.sectors > 0) hunt->unsplit.push_back(rest);
      rest.first_lba = bad->first + sectors_per_logical();
    }
    rest.sectors = end - rest.first_lba;
    if (rest.sectors > 0) hunt->unsplit.push_back(rest);
  }
}

void look_at(const BadRange& transfer, Hunt* hunt) {
  constexpr std::int64_t kSmallest = 256;  // sectors
  Pinpoint& told = run_findings.pinpoint;
  std::vector<Stretch> pieces{widened({transfer.first_lba, transfer.sectors})};
  bool found = false;
  while (told.stopped.empty() && !pieces.empty()) {
    const Stretch piece = pieces.back();
    pieces.pop_back();
    if (piece.sectors > kSmallest) {
      if (!halve(piece, &pieces, hunt)) pieces.push_back(piece);
    } else {
      found = read_singly(piece, hunt) || found;
      if (!told.stopped.empty()) pieces.push_back(piece);
    }
  }
  if (!told.stopped.empty()) {
    keep_unsplit(transfer, pieces, hunt);
    return;
  }
  ++told.looked_at;
  told.recovered += found ? 0 : 1;
}

/// Neighbours of one kind and code as one range. What lies in a range that was not split is told by that.
std::vector<BadRange> exact_ranges(const Hunt& hunt) {
  std::vector<BadRange> ranges;
  for (const auto& [lba, answer] : hunt.bad) {
    const BadKind kind = answer.read ? BadKind::slow : BadKind::unreadable;
    const bool goes_on = !ranges.empty() && ranges.back().end_lba() == lba && ranges.back().kind == kind &&
                         ranges.back().code == answer.code;
    if (goes_on) {
      ranges.back().sectors += sectors_per_logical();
      ranges.back().milliseconds = std::max(ranges.back().milliseconds, answer.milliseconds);
    } else {
      ranges.push_back({.first_lba = lba,
                        .sectors = sectors_per_logical(),
                        .kind = kind,
                        .code = answer.code,
                        .milliseconds = answer.milliseconds});
    }
  }
  return ranges;
}

/// The drive, opened again for as long as the search takes.
class OpenAgain {
 public:
  OpenAgain() {
    const SectorSizes sizes = disk.sizes;
    GetandOpenDrive();
    disk.sizes = sizes;
  }
  ~OpenAgain() { close_drive(); }
  OpenAgain(const OpenAgain&) = delete;
  OpenAgain& operator=(const OpenAgain&) = delete;
};

}  // namespace

std::vector<BadRange> bad_transfers() {
  std::vector<BadRange> found;
  for (std::size_t i = 0; i < measure.errors_kept; ++i) {
    const TransferError& error = measure.errors.at(i);
    if (writes(error.phase) || says_gone(error.code) || !is_of_the_drive(error)) continue;
    found.push_back({.first_lba = error.lba,
                     .sectors = error.sectors,
                     .kind = BadKind::failed_transfer,
                     .code = error.code,
                     .milliseconds = error.seconds * kMilliseconds});
  }
  for (std::size_t i = 0; i < measure.stalls_kept; ++i) {
    const Transfer& stall = measure.stalls.at(i);
    if (writes(stall.phase)) continue;
    found.push_back({.first_lba = stall.lba,
                     .sectors = stall.sectors,
                     .kind = BadKind::stalled_transfer,
                     .code = 0,
                     .milliseconds = stall.seconds * kMilliseconds});
  }
  return found;
}

void list_bad_transfers() {
  run_findings.bad = bad_transfers();
  sort_by_lba(&run_findings.bad);
}

bool wants_pinpoint() {
  return asked.pinpoint && !measure.stopped && (early_end.why.empty() || early_end.past_end) &&
         !run_findings.bad.empty();
}

void pinpoint() {
  const std::vector<BadRange> suspects = bad_transfers();
  Pinpoint& told = run_findings.pinpoint;
  told = {.running = true, .made = true, .suspects = std::ssize(suspects)};
  const std::string status = form1.TxtStatus.text();
  const OpenAgain drive;
  Hunt hunt;
  hunt.began = platform::steady_seconds();
  for (const BadRange& suspect : suspects) {
    if (told.stopped.empty()) {
      look_at(suspect, &hunt);
    } else {
      hunt.unsplit.push_back(suspect);
    }
  }
  told.seconds = platform::steady_seconds() - hunt.began;
  told.running = false;
  form1.TxtStatus.set_text(status);
  run_findings.bad = exact_ranges(hunt);
  std::move(hunt.unsplit.begin(), hunt.unsplit.end(), std::back_inserter(run_findings.bad));
  sort_by_lba(&run_findings.bad);
}
