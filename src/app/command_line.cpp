#include "app/command_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "app/commands.h"
#include "app/switch_values.h"
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

/// A number of `least` to `most`; false for anything else.
bool take_number(std::string_view text, std::int64_t least, std::int64_t most, std::int64_t* value) {
  const std::optional<std::int64_t> number = whole_number(text);
  if (!number || *number < least || *number > most) return false;
  *value = *number;
  return true;
}

bool read_operation(const std::string& value, Asked* result) {
  const Command* const command = command_named(upper_case(value));
  if (command == nullptr || !command->has_switch) return false;
  result->op = command->name;
  result->writes = command->writes;
  result->has_range = command->has_range;
  return true;
}

bool read_virtual_disk(const std::string& value, Asked* result) {
  const bool shaped = value.size() >= 3 && value[0] >= '0' && value[0] < '0' + kDriveCount && value[1] == '=';
  if (!shaped) return false;
  std::string& file = result->virtual_disks.at(static_cast<std::size_t>(value[0] - '0'));
  if (!file.empty()) return false;
  file = value.substr(2);
  return true;
}

bool read_start(const std::string& value, Asked* result) {
  const std::optional<Amount> start = amount(value);
  if (!start) return false;
  result->start_lba = start->sectors;
  result->start_share = start->share;
  return true;
}

/// At least a sector, or more than no percent.
bool read_count(const std::string& value, Asked* result) {
  const std::optional<Amount> count = amount(value);
  if (!count || (count->share ? count->share->millionths_of_percent : count->sectors) < 1) return false;
  result->count = count->sectors;
  result->count_share = count->share;
  return true;
}

bool read_slow(const std::string& value, Asked* result) {
  const std::optional<std::int64_t> whole = whole_number(value);
  result->slow = whole ? std::to_string(*whole) : value;
  if (upper_case(value) == "AUTO" || (whole && *whole > 0)) return true;
  double rate = 0.0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), rate, std::chars_format::fixed);
  return error == std::errc() && end == value.data() + value.size() && std::isfinite(rate) && rate > 0.0;
}

bool read_passes(const std::string& value, Asked* result) {
  std::int64_t passes = 0;
  const bool taken = take_number(value, 1, std::numeric_limits<std::int32_t>::max(), &passes);
  if (taken) result->passes = static_cast<std::int32_t>(passes);
  return taken;
}

/// 1 to 4 bytes, two digits each.
bool read_pattern(const std::string& value, Asked* result) {
  result->pattern = value;
  return !value.empty() && value.size() <= 8 && value.size() % 2 == 0 &&
         value.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos;
}

bool read_find(const std::string& value, Asked* result) {
  result->find = value;
  return parse_search(value).problem == SearchProblem::none;
}

bool take_text(const std::string& value, std::optional<std::string>* text) {
  *text = value;
  return !value.empty();
}

bool read_max_celsius(const std::string& value, Asked* result) {
  constexpr std::int64_t kLowest = 20;
  constexpr std::int64_t kHighest = 120;
  std::int64_t celsius = 0;
  const bool taken = take_number(value, kLowest, kHighest, &celsius);
  if (taken) result->max_celsius = static_cast<int>(celsius);
  return taken;
}

/// OFF, or nothing, or seconds, or seconds and errors: "120", "120,50".
bool read_pinpoint(const std::string& value, Asked* result) {
  constexpr std::int64_t kMost = 1'000'000;
  result->pinpoint = upper_case(value) != "OFF";
  if (value.empty() || !result->pinpoint) return true;
  const std::size_t comma = value.find(',');
  std::int64_t seconds = 0;
  if (!take_number(std::string_view(value).substr(0, comma), 1, kMost, &seconds)) return false;
  result->pinpoint_seconds = static_cast<int>(seconds);
  return comma == std::string::npos ||
         take_number(std::string_view(value).substr(comma + 1), 1, kMost, &result->pinpoint_errors);
}

bool read_stop_after(const std::string& value, Asked* result) {
  return take_number(value, 1, std::numeric_limits<std::int64_t>::max(), &result->stop_after);
}

bool read_exit(const std::string& value, Asked* result) {
  result->exit_by_verdict = upper_case(value) == "VERDICT";
  result->exit_by_bits = upper_case(value) == "BITS";
  return result->exit_by_verdict || result->exit_by_bits;
}

bool read_list(const std::string& /*value*/, Asked* result) {
  if (result->mode != Mode::usage) result->mode = Mode::list;
  return true;
}

bool read_usage(const std::string& /*value*/, Asked* result) {
  result->mode = Mode::usage;
  return true;
}

bool read_version(const std::string& /*value*/, Asked* result) {
  if (result->mode != Mode::usage) result->mode = Mode::version;
  return true;
}

/// Whether a colon and a value stand behind a switch.
enum class Takes : std::uint8_t { nothing, value, either };

/// A switch of our own: how it is taken from its value, and its line of help.
struct Switch {
  const char* name;
  Takes takes;
  bool repeats;
  bool (*take)(const std::string& value, Asked* result);
  const char* good;  // what its value may be
  const char* help;
};

constexpr const char* kAnyFile = "a file";
constexpr const char* kAnyFolder = "a folder";

constexpr std::array kSwitches = {
    Switch{"/VDISK", Takes::value, true, read_virtual_disk, "a drive and its file, each drive once, as 0=disk.vd",
           "/VDISK:n=FILE     attach a virtual disk as drive n: a disk file (.vd), an image (.img .raw .bin .dd),\r\n"
           "                  or DEMO, the practice disk"},
    Switch{
        "/OP", Takes::value, false, read_operation,
        "READ, WRITE, VERIFY, RANDOMREAD, RANDOMWRITE, SEARCH, SHOW, SMART or RESTORE",
        "/OP:NAME          run one command and end with its exit code: READ, WRITE (pattern), VERIFY (compare with\r\n"
        "                  the pattern), RANDOMREAD, RANDOMWRITE (non-destructive), SEARCH, SHOW (sectors in hex),\r\n"
        "                  SMART (listing), RESTORE (give back what an interrupted RANDOMWRITE left)"},
    Switch{"/LIST", Takes::nothing, false, read_list, "",
           "/LIST             list the drives that answer: number, model, serial, firmware, sectors, size"},
    Switch{"/START", Takes::value, false, read_start, "an LBA or a place, as 1000, 0x200, 1,000, 10GB, 512MiB or 50%",
           "/START:lba        first LBA of the run: a number, or a place as 0x200, 1,000, 10GB, 512MiB or 50%"},
    Switch{
        "/COUNT", Takes::value, false, read_count, "sectors or an amount, as 1000, 0x200, 1,000, 10GB, 512MiB or 50%",
        "/COUNT:n          number of sectors, written like that; of a random test: sectors per visit, at most 2097152"},
    Switch{"/PASSES", Takes::value, false, read_passes, "a number from 1 to 2,147,483,647",
           "/PASSES:n         passes of a random test"},
    Switch{"/SLOW", Takes::value, false, read_slow, "MB/s, as 20 or 0.5, or AUTO",
           "/SLOW:n           report transfers slower than n MB/s; AUTO: half the average"},
    Switch{"/PATTERN", Takes::value, false, read_pattern, "2, 4, 6 or 8 hex digits, as 00 or 2C2CAA55",
           "/PATTERN:hex      fill pattern: 2, 4, 6 or 8 hex digits"},
    Switch{"/FIND", Takes::value, false, read_find, "tText, TText, H and pairs of hex digits, or !H and one pair",
           "/FIND:text        search string: tText, TText (any case), H0531 (bytes), !H2E (first other byte)"},
    Switch{"/SERIAL", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->serial); }, "a serial number",
           "/SERIAL:text      serial number that the drive must carry; WRITE needs it"},
    Switch{"/JOURNAL", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->journal); }, kAnyFolder,
           "/JOURNAL:FOLDER   where RANDOMWRITE keeps its undo journal; never on the disk under test"},
    Switch{"/HISTORY", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->history); }, kAnyFolder,
           "/HISTORY:FOLDER   add a line for this run to the drive's history there, and tell what grew since the last"},
    Switch{"/MAXTEMP", Takes::value, false, read_max_celsius, "degrees Celsius from 20 to 120",
           "/MAXTEMP:c        pause at c degrees Celsius (20 to 120) until the drive is 5 degrees cooler"},
    Switch{"/EXIT", Takes::value, false, read_exit, "VERDICT or BITS",
           "/EXIT:VERDICT     end with the verdict on the drive: 100001 GOOD, 100002 NOTE, 100003 NO DATA,\r\n"
           "                  100004 DOUBTFUL, 100005 WORSE, 100006 FAILING\r\n"
           "/EXIT:BITS        end with a sum of bits, one for each kind of trouble, see below"},
    Switch{
        "/PINPOINT", Takes::either, false, read_pinpoint,
        "nothing, OFF, seconds, or seconds and failed reads, as 300,1000",
        "/PINPOINT         after READ and SEARCH find the exact bad sectors of what failed or stalled, by reading\r\n"
        "                  it again in pieces, as the menu More... of the window does; :s or :s,n for at most s\r\n"
        "                  seconds (300) and n failed reads (1000), :OFF for not at all"},
    Switch{"/STOPAFTER", Takes::value, false, read_stop_after, "a number from 1",
           "/STOPAFTER:n      end the run when n transfers have failed"},
    Switch{"/REPORT", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->report); },
           "a file, or - for standard output",
           "/REPORT:FILE      write the report to FILE; - is standard output, the default with /OP"},
    Switch{"/VARS", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->vars); },
           "a file, or - for standard output", "/VARS:FILE        append the report variables to FILE; - likewise"},
    Switch{"/CSV", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->csv); }, kAnyFile,
           "/CSV:FILE         write a row for every transfer"},
    Switch{"/JSON", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->json); }, kAnyFile,
           "/JSON:FILE        write the whole result as one JSON document"},
    Switch{"/GRAPH", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->graph); }, kAnyFile,
           "/GRAPH:FILE.svg   write the transfer-rate graph"},
    Switch{"/HTML", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->html); }, kAnyFile,
           "/HTML:FILE        write verdict, graph, map, bad places and report as one page"},
    Switch{
        "/MAP", Takes::value, false,
        [](const std::string& value, Asked* result) { return take_text(value, &result->map); }, kAnyFile,
        "/MAP:FILE         write a map of what was read, failed and not tried, every 30 seconds and at the end: a\r\n"
        "                  mapfile of GNU ddrescue"},
    Switch{"/RESUME", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->resume); }, kAnyFile,
           "/RESUME:FILE      READ only what such a map says was not done; the drive must be the one of the map"},
    Switch{"/BADLIST", Takes::value, false,
           [](const std::string& value, Asked* result) { return take_text(value, &result->badlist); }, kAnyFile,
           "/BADLIST:FILE     write a line for each bad range: first LBA, sectors, kind, system error"},
    Switch{"/QUIET", Takes::nothing, false, [](const std::string&, Asked* result) { return result->quiet = true; }, "",
           "/QUIET            no progress on standard error"},
    Switch{"/?", Takes::nothing, false, read_usage, "", "/?                this text; also /HELP, /H, -h and --help"},
    Switch{"/VERSION", Takes::nothing, false, read_version, "", "/VERSION          the version; also --version"},
};

/// What other programs call a switch of ours.
struct Alias {
  const char* name;
  const char* means;
};

constexpr std::array kAliases = {Alias{"/HELP", "/?"}, Alias{"/H", "/?"},     Alias{"-H", "/?"},
                                 Alias{"-?", "/?"},    Alias{"--HELP", "/?"}, Alias{"--VERSION", "/VERSION"}};

/// The switch that `token` gives, or null: its whole text, or its name up to a colon.
const Switch* switch_of(const Token& token) {
  std::string name = token.upper.substr(0, token.upper.find(':'));
  for (const Alias& alias : kAliases) {
    if (name == alias.name) name = alias.means;
  }
  const auto* const row =
      std::find_if(kSwitches.begin(), kSwitches.end(), [&](const Switch& candidate) { return name == candidate.name; });
  return row == kSwitches.end() ? nullptr : row;
}

/// "/D:" and what stands behind it selects drives, leniently.
bool is_about_drives(const Token& token) {
  return token.upper.rfind("/D:", 0) == 0;
}

bool looks_like_a_switch(const Token& token) {
  return token.text.size() > 1 && (token.text.front() == '/' || token.text.front() == '-') && !is_about_drives(token);
}

/// How many letters have to be changed, added or taken away to make one text of the other.
std::size_t distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t corner = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t replaced = corner + (one[i] == other[j] ? 0 : 1);
      corner = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, corner + 1});
    }
  }
  return row.back();
}

/// The switch that somebody who wrote `text` may have meant: one that begins so, or else the most alike.
std::string nearest_switch(const std::string& text) {
  const std::string name = text.substr(0, text.find_first_of(":="));
  const std::string_view letters = std::string_view(name).substr(std::min(name.find_first_not_of("-/"), name.size()));
  std::string nearest;
  std::size_t least = std::numeric_limits<std::size_t>::max();
  const auto consider = [&](const char* candidate, const char* shown) {
    const std::string_view other = std::string_view(candidate).substr(1);
    const std::size_t far = letters.size() > 1 && other.starts_with(letters) ? 0 : distance(letters, other);
    if (far >= least) return;
    least = far;
    nearest = shown;
  };
  for (const Switch& row : kSwitches) consider(row.name, row.name);
  consider("/D", "/D:n");
  consider("/DRIVE", "/D:n");
  consider("/HELP", "/?");
  return nearest;
}

std::string not_understood(const Token& token) {
  const std::string nearest =
      looks_like_a_switch(token) ? ": the nearest switch is " + nearest_switch(token.upper) : std::string();
  return "\"" + token.text + "\" is not understood" + nearest + "; /? lists all switches.";
}

bool gives_drive(const Token& token) {
  return token.upper.size() == 4 && token.upper.rfind("/D:", 0) == 0 && token.upper[3] >= '0' &&
         token.upper[3] < '0' + kDriveCount;
}

/// What tokens leave to be judged when all have been read.
struct Tally {
  int drives = 0;
  std::string text;                   // what is none of our switches, in upper case
  std::optional<Token> stray;         // the first of it that is no drive either
  std::optional<Token> stray_switch;  // the first that looks like a switch
};

/// "/D:n" anywhere in the text names drive n; "/D:" alone is enough for command-line mode.
void take_drives(const std::string& text, Asked* result) {
  for (int drive = 0; drive < kDriveCount; ++drive) {
    if (text.find("/D:" + std::to_string(drive)) != std::string::npos) result->named_drives.push_back(drive);
  }
  if (result->mode != Mode::window) return;
  if (!result->op.empty()) {
    result->mode = Mode::batch;
  } else if (text.find("/D:") != std::string::npos) {
    result->mode = Mode::command_line;
  }
}

/// What a command needs, or what it cannot take.
std::string judge_operation(const Asked& result) {
  if (result.serial && result.op.empty()) return "/SERIAL needs /OP.";
  if ((result.exit_by_verdict || result.exit_by_bits) && result.op.empty()) return "/EXIT needs /OP.";
  const Command none{};
  const Command& command = result.op.empty() ? none : *command_named(result.op);
  const std::string shown = "/OP:" + result.op;
  if (command.needs_serial && !result.serial) return shown + " needs /SERIAL:text, the drive's serial number.";
  if (result.resume && result.op != "READ") return "/RESUME needs /OP:READ.";
  if (result.find && !command.takes_find) return "/FIND needs /OP:SEARCH.";
  if (command.takes_find && !result.find) return shown + " needs /FIND:text.";
  const bool above = result.count > command.most_count || result.count_share;
  if (command.most_count != 0 && above) return command.above_most;
  return {};
}

/// Without a drive nothing is written.
std::string judge_outputs(const Asked& result) {
  const std::array<std::pair<const char*, bool>, 8> outputs = {{{"/REPORT", result.report.has_value()},
                                                                {"/VARS", result.vars.has_value()},
                                                                {"/CSV", result.csv.has_value()},
                                                                {"/JSON", result.json.has_value()},
                                                                {"/GRAPH", result.graph.has_value()},
                                                                {"/HTML", result.html.has_value()},
                                                                {"/BADLIST", result.badlist.has_value()},
                                                                {"/MAP", result.map.has_value()}}};
  for (const auto& [name, given] : outputs) {
    if (given) return std::string(name) + " needs /D:n, n from 0 to 7.";
  }
  return {};
}

std::string judge(const Asked& result, const Tally& tally, bool has_switch) {
  if (result.mode == Mode::usage || result.mode == Mode::version) return {};
  const bool list = result.mode == Mode::list;
  const bool batch = !result.op.empty();
  if (batch && list) return "/OP and /LIST exclude each other.";
  if ((batch || list) && tally.stray) return not_understood(*tally.stray);
  if (has_switch && tally.stray_switch) return not_understood(*tally.stray_switch);
  if (batch && tally.drives != 1) return "/OP needs exactly one /D:n, n from 0 to 7.";
  std::string error = judge_operation(result);
  if (!error.empty()) return error;
  return tally.drives == 0 ? judge_outputs(result) : std::string();
}

std::string take_switch(const Switch& row, const Token& token, std::vector<const Switch*>* seen, Asked* result) {
  const std::string shown = "\"" + token.text + "\"";
  if (!row.repeats && std::find(seen->begin(), seen->end(), &row) != seen->end()) {
    return shown + " repeats a switch.";
  }
  seen->push_back(&row);
  // The switches behind it are part of its value.
  if (token.unclosed) return shown + " has a quote that is not closed.";
  const std::size_t colon = token.text.find(':');
  const bool has_value = colon != std::string::npos;
  if (row.takes == Takes::nothing && has_value) return shown + ": " + row.name + " takes no value.";
  const std::string good = std::string("good is ") + row.good + ".";
  if (row.takes == Takes::value && !has_value) return shown + " needs a value behind a colon: " + good;
  if (!row.take(has_value ? token.text.substr(colon + 1) : std::string(), result)) {
    return shown + " has a bad value: " + good;
  }
  return {};
}

void take_text_of(const Token& token, Tally* tally, Asked* result) {
  tally->text += token.upper + " ";
  result->ends_without_drive = result->ends_without_drive || !token.text.empty();
  if (gives_drive(token)) {
    ++tally->drives;
    return;
  }
  if (!tally->stray) tally->stray = token;
  if (!tally->stray_switch && looks_like_a_switch(token)) tally->stray_switch = token;
}

}  // namespace

std::string parse_command_line(std::string_view line, Asked* result) {
  *result = {};
  result->command_line = line;
  std::vector<Token> tokens = split(line);
  if (!tokens.empty()) tokens.erase(tokens.begin());  // the program's own path
  Tally tally;
  std::vector<const Switch*> seen;
  std::string mistake;
  // Behind a mistake the rest is still taken, so that what is told of it goes where the user wants it.
  for (const Token& token : tokens) {
    const Switch* const row = switch_of(token);
    if (row == nullptr) {
      take_text_of(token, &tally, result);
      continue;
    }
    const std::string error = take_switch(*row, token, &seen, result);
    if (mistake.empty()) mistake = error;
    result->has_op = result->has_op || row->name == std::string_view("/OP");
  }
  result->ends_without_drive = result->ends_without_drive || !result->op.empty();
  take_drives(tally.text, result);
  const bool has_switch = !seen.empty() || tally.text.find("/D:") != std::string::npos;
  return mistake.empty() ? judge(*result, tally, has_switch) : mistake;
}

std::string switch_names() {
  constexpr std::size_t kWidth = 40;
  std::string text = "Switches, each explained by sectorix /?:\r\n";
  std::string line = "/D:n";
  for (const Switch& row : kSwitches) {
    if (line.size() + std::string_view(row.name).size() >= kWidth) {
      text += line + "\r\n";
      line.clear();
    }
    line += std::string(line.empty() ? "" : " ") + row.name;
  }
  return text + line + "\r\n";
}

std::string exit_code_help() {
  return "Exit codes of /OP:\r\n"
         "0 clean\r\n"
         "1 a mistake, a missing drive, a refused disk\r\n"
         "3 cancelled\r\n"
         "100010 a result could not be written\r\n"
         "others: failed transfers, SMART errors, events\r\n"
         "With /EXIT:BITS the sum of\r\n"
         "1 mistake, 2 refused, 4 missing, 8 cancelled,\r\n"
         "16 failed transfers, 32 compare errors,\r\n"
         "64 SMART errors, 128 events, 256 no result,\r\n"
         "512 ended early, 1024 DOUBTFUL or worse,\r\n"
         "2048 contents not given back\r\n"
         "QV_RESULT is ok, errors, cancelled, missing,\r\n"
         "refused or mistake\r\n";
}

std::string example_help() {
  return "Examples, from an elevated prompt:\r\n"
         "  sectorix /LIST\r\n"
         "  sectorix /D:1 /OP:READ /JSON:disk1.json\r\n";
}

std::string switch_help() {
  std::string text =
      "Sectorix reads, writes, searches and tests whole disks.\r\n"
      "\r\n"
      "sectorix [/D:n] [switches]\r\n"
      "\r\n"
      "/D:n              initial drive, 0 to 7, and command-line mode: no questions, report output\r\n";
  for (const Switch& row : kSwitches) text += std::string(row.help) + "\r\n";
  return text + "\r\n" + exit_code_help() + "\r\n" + example_help();
}
