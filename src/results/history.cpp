#include "results/history.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "device/whole_file.h"
#include "disk/error_text.h"
#include "form/output.h"
#include "health/numbers.h"
#include "journal/places.h"
#include "results/json_text.h"

namespace {

constexpr std::size_t kDateLength = 19;  // 2026-03-02T10:00:00

bool take_digits(std::string_view text, std::size_t at, std::size_t size, int* value) {
  const std::string_view part = text.substr(at, size);
  const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), *value);
  return error == std::errc() && end == part.data() + part.size() && part.size() == size && *value >= 0;
}

bool take_date(std::string_view text, platform::DateTime* when) {
  constexpr int kMonths = 12;
  return text.size() == kDateLength && take_digits(text, 0, 4, &when->year) && take_digits(text, 5, 2, &when->month) &&
         take_digits(text, 8, 2, &when->day) && take_digits(text, 11, 2, &when->hour) &&
         take_digits(text, 14, 2, &when->minute) && take_digits(text, 17, 2, &when->second) && when->month >= 1 &&
         when->month <= kMonths;
}

std::string member(std::string_view name, const std::string& value) {
  return json_string(name) + ":" + value;
}

/// The members of one object on one line, values texts or whole numbers. Escapes beyond those of a quote and a
/// backslash are kept as they stand: nothing that is compared has any.
class LineParser {
 public:
  explicit LineParser(std::string_view text) : rest_(text) {}

  bool parse(std::map<std::string, std::string>* texts, std::map<std::string, std::int64_t>* numbers) {
    if (!take('{')) return false;
    do {
      std::string name;
      if (!take_text(&name) || !take(':')) return false;
      if (!rest_.empty() && rest_.front() == '"') {
        if (!take_text(&(*texts)[name])) return false;
      } else if (!take_number(&(*numbers)[name])) {
        return false;
      }
    } while (take(','));
    return take('}') && rest_.empty();
  }

 private:
  bool take(char wanted) {
    if (rest_.empty() || rest_.front() != wanted) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool take_text(std::string* text) {
    if (!take('"')) return false;
    text->clear();
    while (!rest_.empty() && rest_.front() != '"') {
      const bool escaped = rest_.front() == '\\' && rest_.size() > 1 && (rest_[1] == '"' || rest_[1] == '\\');
      if (escaped) rest_.remove_prefix(1);
      *text += rest_.front();
      rest_.remove_prefix(1);
    }
    return take('"');
  }

  bool take_number(std::int64_t* number) {
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), *number);
    if (error != std::errc()) return false;
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    return true;
  }

  std::string_view rest_;
};

std::string day_text(const platform::DateTime& when, const platform::DateTime& now) {
  constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                   "May",       "June",     "July",     "August",
                                                   "September", "October",  "November", "December"};
  const std::string day = std::to_string(when.day) + " " + kMonths.at(static_cast<std::size_t>(when.month - 1));
  return when.year == now.year ? day : day + " " + std::to_string(when.year);
}

/// The last line in `contents` of the drive that `line` is about.
std::optional<HistoryLine> last_of_drive(std::string_view contents, const HistoryLine& line) {
  while (!contents.empty()) {
    const std::size_t before = contents.find_last_of('\n');
    std::string_view text = before == std::string_view::npos ? contents : contents.substr(before + 1);
    if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
    std::optional<HistoryLine> found = read_history_line(text);
    if (found && found->serial == line.serial && found->model == line.model) return found;
    contents = contents.substr(0, before == std::string_view::npos ? 0 : before);
  }
  return std::nullopt;
}

}  // namespace

std::string history_text(const HistoryLine& line) {
  std::string text = "{" + member("date", "\"" + json_time(line.date) + "\"");
  const std::array<std::pair<const char*, const std::string*>, 6> texts = {{{"model", &line.model},
                                                                            {"serial", &line.serial},
                                                                            {"firmware", &line.firmware},
                                                                            {"operation", &line.operation},
                                                                            {"verdict", &line.verdict},
                                                                            {"why", &line.why}}};
  for (const auto& [name, value] : texts) text += "," + member(name, json_string(*value));
  for (const auto& [name, value] : line.numbers) text += "," + member(name, std::to_string(value));
  return text + "}";
}

std::optional<HistoryLine> read_history_line(std::string_view text) {
  HistoryLine line;
  std::map<std::string, std::string> texts;
  if (!LineParser(text).parse(&texts, &line.numbers)) return std::nullopt;
  if (!take_date(texts["date"], &line.date)) return std::nullopt;
  line.model = texts["model"];
  line.serial = texts["serial"];
  line.firmware = texts["firmware"];
  line.operation = texts["operation"];
  line.verdict = texts["verdict"];
  line.why = texts["why"];
  return line;
}

std::vector<std::string> grown_since(const HistoryLine& then, const HistoryLine& now) {
  std::vector<std::string> grown;
  for (const HealthNumber& number : health_numbers()) {
    const auto was = then.numbers.find(number.key);
    const auto is = now.numbers.find(number.key);
    if (!number.only_grows || was == then.numbers.end() || is == now.numbers.end()) continue;
    if (is->second <= was->second) continue;
    grown.push_back(std::string(number.label) + " " + std::to_string(was->second) + " on " +
                    day_text(then.date, now.date) + ", " + std::to_string(is->second) + " now");
  }
  return grown;
}

std::optional<HistoryLine> add_to_history(const std::string& folder, const HistoryLine& line, std::string* problem) {
  constexpr std::uint32_t kNoFile = 2;  // winerror.h: FILE_NOT_FOUND, PATH_NOT_FOUND
  constexpr std::uint32_t kNoPath = 3;
  const std::string file = with_separator(folder) + "sectorix-" + in_file_name(line.serial) + ".jsonl";
  const WholeFile whole = read_whole_file(file);
  const std::string contents(whole.bytes.begin(), whole.bytes.end());
  const bool torn = !contents.empty() && contents.back() != '\n';
  const bool absent = whole.open_code == kNoFile || whole.open_code == kNoPath;
  std::uint32_t code = absent ? 0 : std::max(whole.open_code, whole.read_code);
  if (code == 0) code = append_to_file(file, (torn ? "\r\n" : "") + history_text(line) + "\r\n");
  if (code != 0) {
    *problem = "The history \"" + file + "\" cannot be written: " + coded_error_text(code);
    return std::nullopt;
  }
  return last_of_drive(contents, line);
}
