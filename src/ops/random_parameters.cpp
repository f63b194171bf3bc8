#include "ops/random_parameters.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "form/run.h"

namespace {

constexpr std::int32_t kDefaultPasses = 100;
constexpr std::int64_t kDefaultSectors = 1000;
constexpr std::int64_t kMostSectors = 16065;

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

}  // namespace

bool take_passes(const char* title, std::int32_t* passes) {
  if (form1.CommandLineMode) {
    *passes = run.passes != 0 ? run.passes : kDefaultPasses;
    return true;
  }
  std::int64_t answer = 0;
  constexpr std::int64_t kMostPasses = std::numeric_limits<std::int32_t>::max();
  if (!ask_number({"Enter number of passes", title, kDefaultPasses, 1, kMostPasses}, &answer)) return false;
  *passes = static_cast<std::int32_t>(answer);
  return true;
}

bool take_random_parameters(std::int32_t* passes, std::int64_t* sectors) {
  if (!take_passes("", passes)) return false;
  if (form1.CommandLineMode) {
    *sectors = run.count != 0 ? run.count : kDefaultSectors;
    return true;
  }
  const bool given =
      ask_number({"Enter number of sectors per operation ( 0=Max, hint:use 1000 or more to detect slow xfers)", "",
                  kDefaultSectors, 0, std::numeric_limits<std::int64_t>::max()},
                 sectors);
  *sectors = *sectors == 0 ? kMostSectors : std::min(*sectors, kMostSectors);
  return given;
}
