#include "ops/random_choices.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "disk/whole_sectors.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "smart/identification.h"

namespace {

constexpr std::int32_t kDefaultPasses = 100;
constexpr std::int64_t kDefaultSectors = 1000;

/// A question for a whole number.
struct Question {
  const char* prompt;
  const char* title;
  std::int64_t default_answer;
  std::int64_t least;
  std::int64_t most;
};

/// Asks until the answer is a number in range; false for Cancel and an empty answer.
bool ask_number(const Question& question, std::int64_t* number) {
  for (;;) {
    const std::string answer =
        trimmed(ask_line(question.prompt, question.title, std::to_string(question.default_answer)));
    if (answer.empty()) return false;
    const auto [end, error] = std::from_chars(answer.data(), answer.data() + answer.size(), *number);
    const bool whole = error == std::errc() && end == answer.data() + answer.size();
    if (whole && *number >= question.least && *number <= question.most) return true;
    tell_user("Please enter a whole number from " + std::to_string(question.least) + " to " +
              std::to_string(question.most) + ".");
  }
}

/// SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014).
std::uint64_t next() {
  random_numbers.state += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = random_numbers.state;
  mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31U);
}

}  // namespace

bool choose_passes(const char* title, std::int32_t* passes) {
  if (form1.CommandLineMode) {
    *passes = asked.passes != 0 ? asked.passes : kDefaultPasses;
    return true;
  }
  std::int64_t answer = 0;
  constexpr std::int64_t kMostPasses = std::numeric_limits<std::int32_t>::max();
  if (!ask_number({"Enter number of passes", title, kDefaultPasses, 0, kMostPasses}, &answer)) return false;
  *passes = static_cast<std::int32_t>(answer);
  return true;
}

bool choose_random_parameters(std::int32_t* passes, std::int64_t* sectors) {
  if (!choose_passes("", passes)) return false;
  if (form1.CommandLineMode) {
    *sectors = asked.count != 0 ? asked.count : kDefaultSectors;
    return true;
  }
  const bool given =
      ask_number({"Enter number of sectors per operation ( 0=Max, hint:use 1000 or more to detect slow xfers)", "",
                  kDefaultSectors, 0, std::numeric_limits<std::int64_t>::max()},
                 sectors);
  const std::int64_t most = whole_below(kChunkSectors);
  *sectors = *sectors == 0 ? most : std::min(*sectors, most);
  return given;
}

double next_uniform() {
  return static_cast<double>(next() >> 11U) * 0x1p-53;
}

float next_uniform_single() {
  return static_cast<float>(next() >> 40U) * 0x1p-24F;
}

std::int64_t GetRandomSector(std::int64_t sectors) {
  const std::int64_t places = identification.Drive_Sectors - sectors;
  const auto lba = static_cast<std::int64_t>(std::floor(static_cast<double>(places) * next_uniform()));
  return places > 0 ? whole_below(std::min(lba, places - 1)) : lba;
}

RandomPattern draw_pattern() {
  // FF never comes: docs/oddities.md, 15.
  constexpr float kValues = 255.0F;
  RandomPattern pattern{};
  for (std::uint8_t& byte : pattern) byte = static_cast<std::uint8_t>(next_uniform_single() * kValues);
  return pattern;
}
