#include "measure/findings.h"

const char* grade_name(Grade grade) {
  switch (grade) {
    case Grade::failing:
      return "FAILING";
    case Grade::worse:
      return "WORSE";
    case Grade::doubtful:
      return "DOUBTFUL";
    case Grade::note:
      return "NOTE";
    case Grade::good:
      return "GOOD";
    case Grade::no_data:
      break;
  }
  return "NO DATA";
}

bool is_bad(Grade grade) {
  return grade == Grade::failing || grade == Grade::worse || grade == Grade::doubtful;
}

std::string why(const Verdict& verdict) {
  std::string text;
  for (const std::string& fact : verdict.facts) text += (text.empty() ? "" : "; ") + fact;
  return text;
}

std::string verdict_line(const Verdict& verdict) {
  const std::string facts = why(verdict);
  return grade_name(verdict.grade) + (facts.empty() ? std::string() : ": " + facts);
}

double share_of(const Pinpoint& pinpoint) {
  if (pinpoint.suspects == 0) return 0.0;
  return static_cast<double>(pinpoint.looked_at) / static_cast<double>(pinpoint.suspects);
}

HowFar how_far(const ReadBack& of) {
  const double share = of.sectors == 0 ? 0.0 : static_cast<double>(of.done) / static_cast<double>(of.sectors);
  return {.share = share, .seconds_left = seconds_left(of.pace, of.sectors), .phase = Phase::verifying};
}

std::string temperature_text(const TemperatureTrack& track) {
  if (track.samples.empty()) return {};
  return std::to_string(track.samples.back().celsius) + " C";
}
