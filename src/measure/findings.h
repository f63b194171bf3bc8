#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "measure/bad_places.h"
#include "measure/measure.h"
#include "platform/units.h"

/// What a run found out about the drive, beside what it measured: shown by the report's last blocks, the window, the
/// variables and the result files.

/// How a drive is, worst first: the first that fits is the verdict.
enum class Grade : std::uint8_t { failing, worse, doubtful, note, good, no_data };

/// "FAILING", "WORSE", "DOUBTFUL", "NOTE", "GOOD", "NO DATA".
const char* grade_name(Grade grade);

struct Verdict {
  Grade grade = Grade::no_data;
  std::vector<std::string> facts{};  // that decided, the gravest first; ASCII, without what a batch file minds
};

/// True for DOUBTFUL and what is worse.
bool is_bad(Grade grade);

/// The facts in one line, separated by "; ".
std::string why(const Verdict& verdict);

/// "FAILING: attribute 5 REALLOC_SECTOR_COUNT at 1, threshold 36; 500 sectors pending".
std::string verdict_line(const Verdict& verdict);

/// The drive's temperature during the run, in degrees Celsius.
struct TemperatureTrack {
  struct Sample {
    double seconds = 0.0;  // since the run began
    int celsius = 0;
  };
  static constexpr std::size_t kMostSamples = 20'000;  // a week of them

  double began = 0.0;  // of the steady clock
  std::vector<Sample> samples;
  std::optional<int> highest;
  bool tells = false;              // the drive answers without disturbing transfers
  std::int64_t failed_before = 0;  // transfers of the run, at the last look
  int pauses = 0;                  // for the temperature
  double paused_seconds = 0.0;
};

/// "41 C", of the last sample; empty where the drive does not tell.
std::string temperature_text(const TemperatureTrack& track);

/// The search for the exact places behind a read.
struct Pinpoint {
  bool running = false;
  bool made = false;
  std::int64_t suspects = 0;   // transfers that failed or stalled, as many as are kept
  std::int64_t looked_at = 0;  // to the end
  std::int64_t recovered = 0;  // of these, that could be read again without trouble
  std::int64_t reads = 0;
  double seconds = 0.0;
  std::string stopped{};  // why it ended early; empty where it did not
};

/// The share of its transfers that it has looked at, 0 to 1.
double share_of(const Pinpoint& pinpoint);

/// The read-back after a write, while it runs.
struct ReadBack {
  bool running = false;
  std::int64_t sectors = 0;  // to read
  std::int64_t done = 0;     // of these, failed ones included
  double began = 0.0;        // by the steady clock
  Pace pace{};
};

/// How far it is.
HowFar how_far(const ReadBack& of);

struct RunFindings {
  int drive = kNoDrive;
  bool judged = false;
  Verdict verdict{};
  TemperatureTrack temperature{};
  std::vector<BadRange> bad{};  // by LBA
  Pinpoint pinpoint{};
  ReadBack read_back{};
  std::vector<std::string> grown_since{};  // against the drive's history: "pending sectors 0 on 2 March, 8 now"
};

inline RunFindings run_findings;
