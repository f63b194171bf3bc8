#include "results/verify_report.h"

#include <string>

#include "form/form1.h"
#include "form/output.h"
#include "ops/operations.h"

namespace {

constexpr const char* kLineEnd = "\r\n";

std::int64_t not_reached() {
  return verify_run.chunks - verify_run.compared - verify_run.failed;
}

std::string found_text() {
  const VerifyRun& run = verify_run;
  const std::string text = std::to_string(run.differing) + " of " + std::to_string(run.chunks) +
                           (run.differing == 1 ? " chunks differs" : " chunks differ");
  if (run.listed.empty()) return text + " from the pattern " + run.pattern + ".";
  const VerifyRun::Difference& first = run.listed.front();
  return text + ", first difference at LBA " + std::to_string(first.lba) + " byte " + std::to_string(first.offset) +
         ".";
}

std::string block() {
  const VerifyRun& run = verify_run;
  if (!run.not_done.empty()) return "VERIFY: not done, since " + run.not_done + ".";
  std::string text = "VERIFY: " + found_text();
  if (run.failed > 0) text += " " + std::to_string(run.failed) + " could not be read.";
  if (not_reached() == 0) return text;
  text += std::string(run.stopped.empty() ? " CANCELLED: " : " STOPPED: ") + std::to_string(not_reached()) +
          " were not read";
  text += (run.stopped.empty() ? "" : ", since " + run.stopped) + ".";
  return text;
}

std::string variables() {
  const VerifyRun& run = verify_run;
  const bool found = !run.listed.empty();
  return "SET QV_V_DIFFERENCES=" + std::to_string(run.differing) + kLineEnd +
         "SET QV_V_NOT_COMPARED=" + std::to_string(run.chunks - run.compared) + kLineEnd +
         "SET QV_V_FIRST_LBA=" + (found ? std::to_string(run.listed.front().lba) : "") + kLineEnd +
         "SET QV_V_FIRST_OFFSET=" + (found ? std::to_string(run.listed.front().offset) : "") + kLineEnd;
}

}  // namespace

void tell_verify() {
  if (!verify_run.asked) return;
  report_line(kLineEnd + (kLineEnd + block()));
  const std::string lines = variables();
  AppendReportVars(lines);
  form1.Text1.append(lines);
}
