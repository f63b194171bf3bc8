#include "app/command_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "buffer/search.h"
#include "form/form1.h"
#include "form/number_text.h"

namespace {

/// One piece of the command line, quotes taken off.
struct Token {
  std::string text;
  std::string upper;
  bool unclosed = false;  // its last quote has no second
};

std::vector<Token> split(std::string_view line) {
  std::vector<Token> tokens;
  std::string text;
  bool quoted = false;
  bool open = false;
  const auto finish = [&] {
    if (open) tokens.push_back({text, upper_case(text), quoted});
    text.clear();
    open = false;
  };
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
      open = true;
    } else if (!quoted && (c == ' ' || c == '\t')) {
      finish();
    } else {
      text += c;
      open = true;
    }
  }
  finish();
  return tokens;
}

/// A decimal number of `least` to `most`; false for anything else.
bool take_number(std::string_view text, std::int64_t least, std::int64_t most, std::int64_t* value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
  return error == std::errc() && end == text.data() + text.size() && *value >= least && *value <= most;
}

bool take_operation(const std::string& value, Run* asked) {
  // In the order of Operation.
  constexpr std::array kNames = {"READ", "WRITE", "RANDOMREAD", "RANDOMWRITE", "SEARCH", "SHOW", "SMART"};
  const std::string name = upper_case(value);
  const auto* const row = std::find(kNames.begin(), kNames.end(), name);
  if (row == kNames.end()) return false;
  asked->op = static_cast<Operation>(row - kNames.begin());
  return true;
}

bool take_virtual_disk(const std::string& value, Run* asked) {
  const bool shaped = value.size() >= 3 && value[0] >= '0' && value[0] < '0' + kDriveCount && value[1] == '=';
  if (!shaped) return false;
  std::string& file = asked->virtual_disks.at(static_cast<std::size_t>(value[0] - '0'));
  if (!file.empty()) return false;
  file = value.substr(2);
  return true;
}

bool take_start(const std::string& value, Run* asked) {
  return take_number(value, 0, std::numeric_limits<std::int64_t>::max(), &asked->start_lba);
}

bool take_count(const std::string& value, Run* asked) {
  return take_number(value, 1, std::numeric_limits<std::int64_t>::max(), &asked->count);
}

bool take_slow(const std::string& value, Run* asked) {
  asked->slow = value;
  if (upper_case(value) == "AUTO") return true;
  double rate = 0.0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), rate, std::chars_format::fixed);
  return error == std::errc() && end == value.data() + value.size() && std::isfinite(rate) && rate > 0.0;
}

bool take_passes(const std::string& value, Run* asked) {
  std::int64_t passes = 0;
  const bool taken = take_number(value, 1, std::numeric_limits<std::int32_t>::max(), &passes);
  if (taken) asked->passes = static_cast<std::int32_t>(passes);
  return taken;
}

/// 1 to 4 bytes, two digits each.
bool take_pattern(const std::string& value, Run* asked) {
  asked->pattern = value;
  return !value.empty() && value.size() <= 8 && value.size() % 2 == 0 &&
         value.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos;
}

bool take_find(const std::string& value, Run* asked) {
  asked->find = value;
  return parse_search(value).problem == SearchProblem::none;
}

bool take_text(const std::string& value, std::optional<std::string>* text) {
  *text = value;
  return !value.empty();
}

/// A switch of our own: how it is taken from its value, and its line of help.
struct Switch {
  const char* name;
  bool has_value;
  bool repeats;
  bool (*take)(const std::string& value, Run* asked);
  const char* help;
};

constexpr std::array kSwitches = {
    Switch{"/VDISK", true, true, take_virtual_disk,
           "/VDISK:n=FILE     attach a virtual disk as drive n: a disk file (.vd), an image (.img .raw .bin .dd),\r\n"
           "                  or DEMO, the practice disk"},
    Switch{"/OP", true, false, take_operation,
           "/OP:NAME          run one command and end with its exit code: READ, WRITE (pattern), RANDOMREAD,\r\n"
           "                  RANDOMWRITE (non-destructive), SEARCH, SHOW (sectors in hex), SMART (listing)"},
    Switch{"/LIST", false, false, [](const std::string&, Run* asked) { return asked->list = true; },
           "/LIST             list the drives that answer: number, model, serial, firmware, sectors, size"},
    Switch{"/START", true, false, take_start, "/START:lba        first LBA of the run"},
    Switch{"/COUNT", true, false, take_count,
           "/COUNT:n          number of sectors; of a random test: sectors per visit, at most 16065"},
    Switch{"/PASSES", true, false, take_passes, "/PASSES:n         passes of a random test"},
    Switch{"/SLOW", true, false, take_slow,
           "/SLOW:n           report transfers slower than n MB/s; AUTO: half the average"},
    Switch{"/PATTERN", true, false, take_pattern, "/PATTERN:hex      fill pattern: 2, 4, 6 or 8 hex digits"},
    Switch{"/FIND", true, false, take_find,
           "/FIND:text        search string: tText, TText (any case), H0531 (bytes), !H2E (first other byte)"},
    Switch{"/SERIAL", true, false,
           [](const std::string& value, Run* asked) { return take_text(value, &asked->serial); },
           "/SERIAL:text      serial number that the drive must carry; WRITE needs it"},
    Switch{"/REPORT", true, false,
           [](const std::string& value, Run* asked) { return take_text(value, &asked->report); },
           "/REPORT:FILE      write the report to FILE; - is standard output, the default with /OP"},
    Switch{"/VARS", true, false, [](const std::string& value, Run* asked) { return take_text(value, &asked->vars); },
           "/VARS:FILE        append the report variables to FILE; - likewise"},
    Switch{"/CSV", true, false, [](const std::string& value, Run* asked) { return take_text(value, &asked->csv); },
           "/CSV:FILE         write a row for every transfer"},
    Switch{"/JSON", true, false, [](const std::string& value, Run* asked) { return take_text(value, &asked->json); },
           "/JSON:FILE        write the whole result as one JSON document"},
    Switch{"/GRAPH", true, false, [](const std::string& value, Run* asked) { return take_text(value, &asked->graph); },
           "/GRAPH:FILE.svg   write the transfer-rate graph"},
    Switch{"/QUIET", false, false, [](const std::string&, Run* asked) { return asked->quiet = true; },
           "/QUIET            no progress on standard error"},
    Switch{"/?", false, false, [](const std::string&, Run* asked) { return asked->usage = true; },
           "/?                this text"},
};

/// The switch that `token` gives, or null: its whole text, or its name up to a colon.
const Switch* switch_of(const Token& token) {
  const std::string name = token.upper.substr(0, token.upper.find(':'));
  const auto* const row =
      std::find_if(kSwitches.begin(), kSwitches.end(), [&](const Switch& candidate) { return name == candidate.name; });
  return row == kSwitches.end() ? nullptr : row;
}

bool gives_drive(const Token& token) {
  return token.upper.size() == 4 && token.upper.rfind("/D:", 0) == 0 && token.upper[3] >= '0' &&
         token.upper[3] < '0' + kDriveCount;
}

/// What tokens leave to be judged when all have been read.
struct Tally {
  int drives = 0;
  std::string stray;  // the first text that is no switch
};

/// What an operation needs, or what it cannot take.
std::string judge_operation(const Run& asked) {
  constexpr std::int64_t kMostPerVisit = 16065;
  constexpr std::int64_t kMostShown = 20;
  const bool random = asked.op == Operation::random_read || asked.op == Operation::random_write;
  if (asked.op == Operation::write && !asked.serial) return "/OP:WRITE needs /SERIAL:text, the drive's serial number.";
  if (asked.serial && !asked.op) return "/SERIAL needs /OP.";
  if (asked.find && asked.op != Operation::search) return "/FIND needs /OP:SEARCH.";
  if (asked.op == Operation::search && !asked.find) return "/OP:SEARCH needs /FIND:text.";
  if (random && asked.count > kMostPerVisit) return "/COUNT of a random test is at most 16065.";
  if (asked.op == Operation::show && asked.count > kMostShown) return "/OP:SHOW shows at most 20 sectors.";
  return {};
}

/// Without a drive nothing is written.
std::string judge_outputs(const Run& asked) {
  const std::array<std::pair<const char*, bool>, 5> outputs = {{{"/REPORT", asked.report.has_value()},
                                                                {"/VARS", asked.vars.has_value()},
                                                                {"/CSV", asked.csv.has_value()},
                                                                {"/JSON", asked.json.has_value()},
                                                                {"/GRAPH", asked.graph.has_value()}}};
  for (const auto& [name, given] : outputs) {
    if (given) return std::string(name) + " needs /D:n, n from 0 to 7.";
  }
  return {};
}

std::string judge(const Run& asked, const Tally& tally) {
  if (asked.usage) return {};
  if (asked.op && asked.list) return "/OP and /LIST exclude each other.";
  if ((asked.op || asked.list) && !tally.stray.empty())
    return "\"" + tally.stray + "\" is not understood; /? lists all switches.";
  if (asked.op && tally.drives != 1) return "/OP needs exactly one /D:n, n from 0 to 7.";
  std::string error = judge_operation(asked);
  if (!error.empty()) return error;
  return tally.drives == 0 ? judge_outputs(asked) : std::string();
}

std::string take_switch(const Switch& row, const Token& token, std::vector<const Switch*>* seen, Run* asked) {
  const std::string shown = "\"" + token.text + "\"";
  if (!row.repeats && std::find(seen->begin(), seen->end(), &row) != seen->end()) {
    return shown + " repeats a switch.";
  }
  seen->push_back(&row);
  // It would have swallowed the switches behind it.
  if (token.unclosed) return shown + " has a quote that is not closed.";
  const std::size_t colon = token.text.find(':');
  const bool has_value = colon != std::string::npos;
  if (row.has_value != has_value || !row.take(has_value ? token.text.substr(colon + 1) : std::string(), asked)) {
    return shown + " has a bad value; /? lists all switches.";
  }
  return {};
}

}  // namespace

std::string parse_command_line(std::string_view line, Run* asked) {
  *asked = {};
  asked->command_line = line;
  std::vector<Token> tokens = split(line);
  if (!tokens.empty()) tokens.erase(tokens.begin());  // the program's own path
  Tally tally;
  std::vector<const Switch*> seen;
  for (const Token& token : tokens) {
    if (const Switch* const row = switch_of(token)) {
      std::string error = take_switch(*row, token, &seen, asked);
      if (!error.empty()) return error;
      continue;
    }
    asked->searched += asked->searched.empty() ? token.upper : " " + token.upper;
    if (gives_drive(token)) {
      ++tally.drives;
      asked->drive = token.upper[3] - '0';
    } else if (tally.stray.empty()) {
      tally.stray = token.text;
    }
  }
  asked->wants_drive = asked->op || !asked->searched.empty();
  return judge(*asked, tally);
}

std::string switch_help() {
  std::string text =
      "Sectorix reads, writes, searches and tests whole disks.\r\n"
      "\r\n"
      "sectorix [/D:n] [switches]\r\n"
      "\r\n"
      "/D:n              initial drive, 0 to 7, and command-line mode: no questions, report output\r\n";
  for (const Switch& row : kSwitches) text += std::string(row.help) + "\r\n";
  return text;
}
