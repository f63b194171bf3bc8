#include "results/run_report.h"

#include <algorithm>
#include <string>

#include "disk/early_end.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/outcome.h"
#include "form/output.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "measure/run_map.h"
#include "results/results.h"
#include "smart/identification.h"

namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr std::size_t kMostLines = 1000;

/// "44 % not read".
std::string not_done_text() {
  const char* done = "done";
  if (measure.plan.kind == RunKind::read) done = "read";
  if (measure.plan.kind == RunKind::write) done = "written";
  if (measure.plan.kind == RunKind::verify) done = "compared";
  if (measure.plan.kind == RunKind::search) done = "searched";
  return std::to_string(percent_not_done(measure)) + " % not " + done;
}

/// What of the range lies past the disk's end; empty if nothing does.
std::string past_end_text() {
  const std::int64_t size = identification.Drive_Sectors;
  const std::int64_t past = lba_after(measure.plan.first_lba, measure.plan.sectors) - size;
  const std::int64_t sectors = std::min(past, measure.plan.sectors);
  if (is_random(measure.plan.kind) || sectors <= 0) return {};
  return std::to_string(sectors) + (sectors == 1 ? " sector of the range lies" : " sectors of the range lie") +
         " past the disk's end, LBA " + std::to_string(size - 1) + ".";
}

std::string end_line() {
  if (identification.Drive_Sectors == 0) {
    return command_end.reason.empty() ? std::string() : command_end.reason + " No transfer could succeed.";
  }
  const std::string place =
      is_random(measure.plan.kind) ? std::string() : " at LBA " + std::to_string(measure.next_lba);
  if (early_end.past_end) return "STOPPED" + place + ", " + not_done_text() + ": " + past_end_text();
  if (!early_end.why.empty()) return "STOPPED" + place + ", " + not_done_text() + ": " + early_end.why;
  return measure.stopped ? "CANCELLED" + place + ": " + not_done_text() : past_end_text();
}

std::string resumed_line() {
  if (!run_map.resumed) return {};
  return "RESUMED from " + run_map.file + ": " + std::to_string(run_map.done_before) +
         " sectors were done before and not read again, " + std::to_string(measure.plan.work) + " were left.";
}

std::string range_line(const BadRange& range) {
  std::string line = std::string(bad_kind_text(range.kind)) + ": " + lba_text(range) + ", " +
                     std::to_string(range.sectors) + (range.sectors == 1 ? " sector" : " sectors");
  if (range.code != 0) line += ", error " + std::to_string(range.code) + " - " + trimmed(GetErrMsg(range.code));
  line += ", up to " + fixed_text(range.milliseconds, 0) + " ms";
  if (!range.partition.empty()) line += "; " + range.partition;
  if (!range.owner.empty()) line += "; " + range.owner;
  return line + kLineEnd;
}

std::string range_lines() {
  const std::vector<BadRange>& bad = run_findings.bad;
  if (bad.empty()) return std::string("None was found.") + kLineEnd;
  std::string lines;
  const std::size_t shown = std::min(bad.size(), kMostLines);
  for (std::size_t i = 0; i < shown; ++i) lines += range_line(bad[i]);
  if (bad.size() > shown) lines += "... and " + std::to_string(bad.size() - shown) + " more" + kLineEnd;
  return lines;
}

std::string pinpoint_line() {
  const Pinpoint& told = run_findings.pinpoint;
  if (!told.made) {
    if (run_findings.bad.empty()) return {};
    return std::string("Each range is a whole transfer. ") +
           (in_batch() ? "/PINPOINT reads them" : "More... > Find exact bad sectors reads them") +
           " again in pieces, to find the exact sectors." + kLineEnd;
  }
  std::string line = "Pinpointed " + std::to_string(told.looked_at) + " of " + std::to_string(told.suspects) +
                     " transfers in " + fixed_text(told.seconds, 1) + " s with " + std::to_string(told.reads) +
                     " reads";
  if (told.recovered > 0) line += "; " + std::to_string(told.recovered) + " could be read again without trouble";
  if (!told.stopped.empty()) line += "; ended early: " + told.stopped;
  return line + "." + kLineEnd;
}

std::string unlisted_line() {
  const std::int64_t unlisted = measure.failed - static_cast<std::int64_t>(measure.errors_kept) + measure.stalled -
                                static_cast<std::int64_t>(measure.stalls_kept);
  if (unlisted == 0) return {};
  return std::to_string(unlisted) + " more transfers failed or stalled and stand in no range." + kLineEnd;
}

std::string pinpoint_word() {
  if (!run_findings.pinpoint.made) return "NO";
  return run_findings.pinpoint.stopped.empty() ? "YES" : "PARTLY";
}

std::string variables() {
  std::int64_t unreadable = 0;
  std::int64_t slow = 0;
  for (const BadRange& range : run_findings.bad) {
    if (range.kind == BadKind::unreadable) unreadable += range.sectors;
    if (range.kind == BadKind::slow) slow += range.sectors;
  }
  const std::vector<BadRange>& bad = run_findings.bad;
  return "SET QV_B_RANGES=" + std::to_string(bad.size()) + kLineEnd +
         "SET QV_B_FIRST_LBA=" + (bad.empty() ? std::string() : std::to_string(bad.front().first_lba)) + kLineEnd +
         "SET QV_B_UNREADABLE=" + std::to_string(unreadable) + kLineEnd + "SET QV_B_SLOW=" + std::to_string(slow) +
         kLineEnd + "SET QV_B_PINPOINTED=" + pinpoint_word() + kLineEnd;
}

}  // namespace

void tell_run_end() {
  if (!measured_something()) return;
  const std::string line = end_line();
  const std::string resumed = resumed_line();
  if (line.empty() && resumed.empty()) return;
  report_line("\r\n\r\nRUN\r\n===\r\n" + resumed + (resumed.empty() || line.empty() ? "" : kLineEnd) + line);
  if (!early_end.why.empty()) tell_on_stderr(line);
}

void tell_bad_places() {
  report_line("\r\n\r\nBAD PLACES\r\n==========\r\n" + range_lines() + pinpoint_line() + unlisted_line());
  const std::string lines = variables();
  AppendReportVars(lines);
  form1.Text1.append(lines);
}
