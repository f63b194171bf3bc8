#include "disk/progress.h"

#include <cmath>

#include "disk/counters.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "platform/clock.h"

namespace {

constexpr double kShortestTimed = 0.05;       // seconds; a shorter transfer is not timed
constexpr double kUntimedRate = 50.0;         // MB/s shown for a transfer too short to time
constexpr std::int64_t kShortestSlow = 200;   // sectors; a smaller transfer is never slow
constexpr std::int64_t kAutoAfter = 100'000;  // sectors done before AUTO sets the limit
constexpr double kAutoShare = 0.5;            // of the average

/// What the status line after a transfer says.
struct StatusFacts {
  std::int64_t done;
  std::int64_t asked;
  double elapsed;
  double rate;
  std::int64_t average;
};

std::string status_text(const StatusFacts& facts) {
  // In double precision, since a hundred times a large count does not fit.
  const double percent =
      facts.asked > 0 ? std::floor(100.0 * static_cast<double>(facts.done) / static_cast<double>(facts.asked)) : 0.0;
  const int shown = percent >= 0.0 && percent <= 100.0 ? static_cast<int>(percent) : 0;
  return std::to_string(facts.done) + " sectors in " + fixed_text(facts.elapsed, 1) + "s  (" + std::to_string(shown) +
         "%)  [" + double_text(facts.rate) + "MB/s, avg=" + std::to_string(facts.average) + "MB/s]";
}

void report_slow(std::int64_t sectors, std::int64_t lba, double rate) {
  ++progress.SlowXfers;
  const std::string line = platform::default_form(platform::local_time()) + " Slow xfer (<" +
                           double_text(progress.SlowRate) + "MB/s) at " + std::to_string(lba) + " for " +
                           std::to_string(sectors) + " blocks, " + double_text(std::floor(rate)) + "MB/s";
  form1.Text1.append(line + "\r\n");
  PrintReport(line);
}

double rate_over(std::int64_t sectors, double duration) {
  return static_cast<double>(sectors) / kSectorsPerMb / duration;
}

/// The statistics of a transfer long enough to time. Gives its rate in MB/s.
double time_transfer(std::int64_t sectors, std::int64_t lba, double duration) {
  const double rate = rate_over(sectors, duration);
  const double jump = std::abs(rate - progress.HighRate);
  if (progress.HighRate > 0.0 && jump > progress.MaxRateJump) progress.MaxRateJump = jump;
  if (progress.LowRate != 0.0 && rate < progress.LowRate) progress.LowRate = rate;
  if (rate > progress.HighRate) progress.HighRate = rate;
  if (is_slow(sectors, duration)) report_slow(sectors, lba, rate);
  return rate;
}

}  // namespace

bool is_slow(std::int64_t sectors, double duration) {
  return duration > kShortestTimed && sectors >= kShortestSlow &&
         std::floor(rate_over(sectors, duration)) < progress.SlowRate;
}

void clear_progress() {
  const double limit = progress.AutoSlowRate ? kDefaultSlowRate : progress.SlowRate;
  progress = {.SlowRate = limit, .AutoSlowRate = progress.AutoSlowRate};
}

void Display_Progress(std::int64_t sectors, std::int64_t lba) {
  // The transfer has just ended: another look at the clock would cost as much as all of this.
  const double elapsed = progress.XferEnd - counters.OpStartTime;
  const double per_second = elapsed > 0.0 ? std::floor(static_cast<double>(counters.Sectors_Done) / elapsed) : 0.0;
  progress.average_rate = static_cast<std::int64_t>(per_second / kSectorsPerMb);
  const double duration = progress.XferEnd - progress.XferStart;
  const bool timed = duration > kShortestTimed;
  const double rate = timed ? time_transfer(sectors, lba, duration) : kUntimedRate;
  form1.TxtStatus.set_deferred<status_text>(
      StatusFacts{counters.Sectors_Done, counters.No_Secs, elapsed, rate, progress.average_rate});
  if (progress.AutoSlowRate && timed && counters.Sectors_Done > kAutoAfter) {
    progress.SlowRate = kAutoShare * static_cast<double>(progress.average_rate);
  }
}

void set_slow_rate(const std::string& answer) {
  if (answer.empty()) return;
  progress.AutoSlowRate = upper_case(answer).find("AUTO") != std::string::npos;
  const double limit = progress.AutoSlowRate ? kDefaultSlowRate : leading_number(answer);
  if (limit != 0.0) progress.SlowRate = limit;
  if (limit == 0.0) {
    form1.TxtStatus.set_text("Slow limit: \"" + answer + "\" is neither a number of MB/s nor AUTO; the limit is " +
                             double_text(progress.SlowRate) + " MB/s.");
  }
}

void ask_slow_rate() {
  set_slow_rate(
      ask_line("Set Slow Transfer Threshold Rate in MB/Sec\r\n"
               "Type AUTO to set threshold to 50% of Average rate\r\n\r\n"
               "Tip: Use AUTO to find retries and reallocated sectors",
               "Set Slow Transfer Threshold Rate", double_text(progress.SlowRate)));
}
