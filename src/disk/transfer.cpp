#include "disk/transfer.h"

#include <limits>
#include <string>
#include <string_view>

#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/error_text.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "measure/measure.h"
#include "platform/clock.h"
#include "platform/window.h"

namespace {

/// How reading and writing differ.
struct Direction {
  bool (*transfer)(std::int64_t lba, std::int64_t count);
  void (*report_failure)(std::int64_t lba, std::int64_t sectors);
  const char* doing;
  bool writes;
};

struct PositionFacts {
  std::int64_t lba;
  std::int64_t sectors;
  const char* doing;
};

std::string position_text(const PositionFacts& facts) {
  return "At sector " + std::to_string(facts.lba) + " and " + facts.doing + " " + std::to_string(facts.sectors) +
         " sectors";
}

std::string lba_text(const std::int64_t& lba) {
  return std::to_string(lba);
}

void report_failure(std::string_view what, std::int64_t lba, std::int64_t sectors) {
  const std::string text = "Error " + std::string(what) + " Sector " + std::to_string(lba) + " for " +
                           std::to_string(sectors) + " sectors.\r\nERROR: " + std::to_string(disk.Errno) + " - " +
                           GetErrMsg(disk.Errno) + "\r\n";
  report_and_show(text);
}

void report_read_failure(std::int64_t lba, std::int64_t sectors) {
  counters.TotalRErrors = counters.TotalErrors + 1;
  ++counters.TotalErrors;
  report_failure("Reading", lba, sectors);
}

void report_write_failure(std::int64_t lba, std::int64_t sectors) {
  // The write count ends one above the total, the read count equal to it: docs/oddities.md, 1.
  ++counters.TotalErrors;
  counters.TotalWErrors = counters.TotalErrors + 1;
  report_failure("Writing", lba, sectors);
}

constexpr Direction kReading{ReadAt, report_read_failure, "reading", false};
constexpr Direction kWriting{WriteAt, report_write_failure, "writing", true};

/// One timed transfer. `tells_slow`: the report has a line of it when it is slow. `in_a_row`: nothing was done since
/// the one before. Made for each direction, so that small transfers are spared a call through a pointer.
template <const Direction& direction>
bool transfer_once(std::int64_t lba, std::int64_t sectors, bool tells_slow, bool in_a_row) {
  form1.TxtStatus.cover_deferred<position_text>(PositionFacts{lba, sectors, direction.doing});
  form1.TxtCurrent.set_deferred<lba_text>(lba);
  fetch_column(lba, measure.map);
  progress.XferStart = in_a_row ? progress.XferEnd : platform::seconds_since_midnight();
  const bool done = direction.transfer(lba, sectors);
  progress.XferEnd = platform::seconds_since_midnight();
  if (disk.given_up) return false;
  measure_transfer({.wrote = direction.writes,
                    .slow = tells_slow && is_slow(sectors, progress.XferEnd - progress.XferStart),
                    .error = done ? 0 : disk.Errno,
                    .lba = lba,
                    .sectors = sectors,
                    .start = progress.XferStart,
                    .end = progress.XferEnd});
  if (!done) direction.report_failure(lba, sectors);
  note_outcome(lba, done ? 0 : disk.Errno);
  counters.Sectors_Done += sectors;
  return done;
}

/// True when the last transfer was so short that a look at the clock would cost more than what is done until the next
/// begins: it is counted, and nothing is written anywhere.
bool ends_at_once(bool done) {
  constexpr double kShort = 0.001;  // seconds
  return done && progress.XferEnd - progress.XferStart < kShort && measure.on_transfer == nullptr &&
         measure.on_settled == nullptr;
}

template <const Direction& direction>
bool transfer_all(std::int64_t* lba, std::int64_t total, std::int64_t per_transfer, Events events) {
  if (per_transfer <= 0) return true;
  bool all_done = true;
  const std::int64_t transfers = total / per_transfer;
  for (std::int64_t i = 0; i < transfers; ++i) {
    bool in_a_row = false;
    if (events == Events::run) {
      const bool shown = show_progress_line();
      const bool pumped = platform::pump_events();
      const bool worked = work_between_transfers();
      if (told_to_stop()) break;
      in_a_row = progress.in_a_row && !shown && !pumped && !worked;
    }
    const bool done = transfer_once<direction>(*lba, per_transfer, true, in_a_row);
    all_done = done && all_done;
    if (disk.given_up) {
      platform::pump_events();  // the presses that gave it up
      break;
    }
    progress.in_a_row = events == Events::run && ends_at_once(done);
    Display_Progress(per_transfer, *lba);
    *lba = lba_after(*lba, per_transfer);
  }
  return all_done;
}

bool do_what_is_due(BetweenTransfers::Due* due) {
  constexpr std::uint64_t kEvery = 30'000;  // milliseconds
  if (due->work == nullptr) return false;
  const std::uint64_t now = platform::coarse_milliseconds();
  if (due->due == 0) due->due = now + kEvery;
  if (now < due->due) return false;
  due->due = now + kEvery;
  due->work();
  return true;
}

}  // namespace

bool work_between_transfers() {
  const bool looked = do_what_is_due(&between_transfers.temperature);
  return do_what_is_due(&between_transfers.map) || looked;
}

std::int64_t lba_after(std::int64_t lba, std::int64_t sectors) {
  constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
  return lba > kLast - sectors ? kLast : lba + sectors;
}

bool read_once(std::int64_t lba, std::int64_t sectors) {
  return transfer_once<kReading>(lba, sectors, false, false);
}

bool Read_sectors(std::int64_t* lba, std::int64_t total, std::int64_t per_transfer, Events events) {
  return transfer_all<kReading>(lba, total, per_transfer, events);
}

bool Write_sectors(std::int64_t* lba, std::int64_t total, std::int64_t per_transfer, Events events) {
  return transfer_all<kWriting>(lba, total, per_transfer, events);
}
