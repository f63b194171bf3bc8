#include "health/verdict.h"

#include <algorithm>
#include <array>

#include "form/number_text.h"
#include "smart/snapshot.h"

namespace {

constexpr int kHottest = 79;  // degrees Celsius, where the maker names no limit

/// Facts with the grade that each stands for.
struct Findings {
  std::vector<std::pair<Grade, std::string>> facts;

  void add(Grade grade, std::string fact) { facts.emplace_back(grade, std::move(fact)); }
  void add_if(bool holds, Grade grade, const std::string& fact) {
    if (holds) add(grade, fact);
  }
};

std::string counted(std::uint64_t count, const std::string& one, const std::string& more) {
  return std::to_string(count) + " " + (count == 1 ? one : more);
}

std::string degrees(int celsius) {
  return std::to_string(celsius) + " degrees Celsius";
}

bool grew(const Count& before, const Count& after) {
  return before && after && *after > *before;
}

std::string growth(const std::string& what, const Count& before, const Count& after) {
  return what + " grew from " + std::to_string(*before) + " to " + std::to_string(*after);
}

/// A count that is bad where it is not 0 and worse where it grew.
struct BadCount {
  Count Health::*count;
  const char* what;
  const char* one;  // "sector pending"; null where the count alone says nothing
  const char* more;
};

constexpr std::array<BadCount, 8> kBadCounts = {{
    {&Health::media_errors, "media errors", "media error", "media errors"},
    {&Health::pending, "pending sectors", "sector pending", "sectors pending"},
    {&Health::uncorrectable, "uncorrectable sectors", "sector uncorrectable", "sectors uncorrectable"},
    {&Health::reallocated, "reallocated sectors", "sector reallocated", "sectors reallocated"},
    {&Health::reported_uncorrectable, "reported uncorrectable errors", nullptr, nullptr},
    {&Health::read_uncorrected, "uncorrected read errors", nullptr, nullptr},
    {&Health::write_uncorrected, "uncorrected write errors", nullptr, nullptr},
    {&Health::grown_defects, "grown defects", "grown defect", "grown defects"},
}};

void judge_counts(const Health& before, const Health& now, Findings* findings) {
  for (const BadCount& bad : kBadCounts) {
    const Count& was = before.*bad.count;
    const Count& is = now.*bad.count;
    if (grew(was, is)) {
      findings->add(Grade::worse, growth(bad.what, was, is));
    } else if (bad.one != nullptr && is.value_or(0) > 0) {
      findings->add(Grade::doubtful, counted(*is, bad.one, bad.more));
    }
  }
}

void judge_critical_warning(const Health& now, Findings* findings) {
  struct Bit {
    unsigned bit;
    Grade grade;
    const char* text;
  };
  constexpr std::array<Bit, 6> kBits = {{{0, Grade::failing, "spare below its threshold"},
                                         {1, Grade::doubtful, "temperature outside its limits"},
                                         {2, Grade::failing, "reliability degraded by media or internal errors"},
                                         {3, Grade::failing, "media read-only"},
                                         {4, Grade::failing, "backup of the volatile memory failed"},
                                         {5, Grade::doubtful, "persistent memory region unreliable"}}};
  const unsigned warning = now.critical_warning.value_or(0);
  for (const Bit& bit : kBits) {
    const bool set = (warning >> bit.bit & 1U) != 0;
    findings->add_if(set, bit.grade, std::string("the drive warns: ") + bit.text);
  }
}

std::string percent(std::uint8_t value) {
  return std::to_string(value) + " percent";
}

void judge_nvme(const Health& before, const Health& now, Findings* findings) {
  constexpr std::uint8_t kUsedUp = 100;
  constexpr std::uint8_t kNearlyUsedUp = 90;
  judge_critical_warning(now, findings);
  if (now.spare && now.spare_threshold && *now.spare < *now.spare_threshold) {
    findings->add(Grade::failing,
                  "available spare at " + percent(*now.spare) + ", threshold " + percent(*now.spare_threshold));
  }
  const std::uint8_t used = now.used.value_or(0);
  findings->add_if(used >= kNearlyUsedUp, used >= kUsedUp ? Grade::doubtful : Grade::note,
                   percent(used) + " of its rated endurance used");
  findings->add_if(grew(before.unsafe_shutdowns, now.unsafe_shutdowns), Grade::note, "unsafe shutdowns grew");
  findings->add_if(grew(before.critical_minutes, now.critical_minutes), Grade::note,
                   "minutes above the critical temperature grew");
}

void judge_ata(const Health& before, const Health& now, Findings* findings) {
  for (const HealthAttribute& attribute : now.attributes) {
    if (!attribute.at_threshold()) continue;
    findings->add(attribute.foretells_failure() ? Grade::failing : Grade::doubtful,
                  "attribute " + std::to_string(attribute.id) + " " + trimmed(AttName(attribute.id)) + " at " +
                      std::to_string(attribute.current) + ", threshold " + std::to_string(attribute.threshold));
  }
  findings->add_if(now.status_says_failing.value_or(false), Grade::failing, "its SMART status predicts failure");
  if (grew(before.crc_errors, now.crc_errors)) {
    findings->add(Grade::note,
                  growth("interface CRC errors", before.crc_errors, now.crc_errors) + ", which points at the cable");
  }
  const bool restarted = now.protocol == HealthProtocol::ata && grew(before.power_cycles, now.power_cycles);
  findings->add_if(restarted, Grade::note, "the drive lost its power meanwhile");
}

void judge_scsi(const Health& now, Findings* findings) {
  constexpr std::uint8_t kFailurePredicted = 0x5D;  // SPC-4, additional sense codes
  const std::uint8_t asc = now.asc.value_or(0);
  if (asc == 0) return;
  const std::string code = "ASC " + std::to_string(asc) + ", ASCQ " + std::to_string(now.ascq.value_or(0));
  if (asc == kFailurePredicted) {
    findings->add(Grade::failing, "the drive predicts its failure (" + code + ")");
  } else {
    findings->add(Grade::doubtful, "the drive reports an exception (" + code + ")");
  }
}

void judge_temperature(const Health& now, const RunTotals& totals, Findings* findings) {
  const std::optional<int> celsius = std::max(now.celsius, totals.highest_celsius);
  if (!celsius) return;
  const bool too_warm = now.warning_celsius ? *celsius >= *now.warning_celsius : *celsius > kHottest;
  if (!too_warm) return;
  findings->add(Grade::doubtful,
                degrees(*celsius) + (now.warning_celsius ? ", its limit is " + degrees(*now.warning_celsius)
                                                         : ", too warm for any drive"));
}

void judge_run(const RunTotals& totals, Findings* findings) {
  const auto positive = [](std::int64_t count) { return static_cast<std::uint64_t>(std::max<std::int64_t>(count, 0)); };
  const std::uint64_t failed = positive(totals.failed_transfers);
  const std::uint64_t compare = positive(totals.compare_errors);
  const std::uint64_t slow = positive(totals.slow_transfers);
  findings->add_if(compare > 0, Grade::doubtful, counted(compare, "compare error", "compare errors") + " in the run");
  findings->add_if(failed > 0, Grade::doubtful, counted(failed, "transfer", "transfers") + " of the run failed");
  findings->add_if(slow > 0, Grade::note, counted(slow, "slow transfer", "slow transfers") + " in the run");
}

/// Lifetime counters, which never fall on a drive that means what it says.
constexpr std::array<std::pair<Count Health::*, const char*>, 5> kLifetime = {
    {{&Health::power_on_hours, "power-on hours"},
     {&Health::power_cycles, "power cycles"},
     {&Health::data_read, "data read"},
     {&Health::data_written, "data written"},
     {&Health::unsafe_shutdowns, "unsafe shutdowns"}}};

/// What the second snapshot says against the first; empty where nothing does.
std::string contradiction(const Health& before, const Health& after) {
  for (const auto& [count, what] : kLifetime) {
    if (grew(after.*count, before.*count))
      return std::string(what) + " fell from " + std::to_string(*(before.*count)) + " to " +
             std::to_string(*(after.*count));
  }
  return {};
}

/// The snapshot to judge by; what is wrong with the other one is a finding.
const Health& believed(const Health& before, const Health& after, Findings* findings) {
  if (!before.answered) return after;
  if (!after.answered) {
    findings->add(Grade::doubtful, "the drive gave no health data any more after the run");
    return before;
  }
  const std::string fault = contradiction(before, after);
  if (fault.empty()) return after;
  findings->add(Grade::doubtful, "the health data after the run contradict those before it: " + fault);
  return before;
}

std::string pages_of(const Health& now) {
  switch (now.protocol) {
    case HealthProtocol::nvme:
      return "the health log";
    case HealthProtocol::ata:
      return now.status_says_failing ? "the SMART attributes, the SMART status" : "the SMART attributes";
    case HealthProtocol::scsi:
      return "the log pages";
    case HealthProtocol::none:
      break;
  }
  return "the driver's word";
}

}  // namespace

Verdict judge(const Health& before, const Health& after, const RunTotals& totals) {
  Findings findings;
  const Health& now = believed(before, after, &findings);
  judge_nvme(before, now, &findings);
  judge_ata(before, now, &findings);
  judge_scsi(now, &findings);
  findings.add_if(now.driver_predicts_failure.value_or(false), Grade::failing, "its driver predicts failure");
  judge_counts(before, now, &findings);
  judge_temperature(now, totals, &findings);
  judge_run(totals, &findings);
  std::stable_sort(findings.facts.begin(), findings.facts.end(),
                   [](const auto& one, const auto& other) { return one.first < other.first; });
  Verdict verdict;
  for (const auto& [grade, fact] : findings.facts) verdict.facts.push_back(fact);
  if (!findings.facts.empty()) {
    verdict.grade = findings.facts.front().first;
  } else if (now.answered) {
    verdict.grade = Grade::good;
    verdict.facts = {"no sign of trouble in " + pages_of(now) + " and the run"};
  } else {
    for (const Unanswered& one : now.unanswered) verdict.facts.push_back(one.request + ": " + one.reason);
  }
  return verdict;
}
