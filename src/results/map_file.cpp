#include "results/map_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <vector>

#include "platform/units.h"

namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 62U;  // of a disk: no sum of two overflows
constexpr std::string_view kBlanks = " \t\r\v\f";
constexpr std::string_view kRunStatuses = "?*/-FG+";

constexpr const char* kModel = "Model: ";
constexpr const char* kSerial = "Serial: ";
constexpr const char* kSectors = "Sectors of 512 bytes: ";
constexpr const char* kLogical = "Bytes of a logical sector: ";

std::string hex(std::int64_t sectors) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "0x%08" PRIX64, static_cast<std::uint64_t>(sectors * SectorSize));
  return text.data();
}

char status_of(Tried state) {
  switch (state) {
    case Tried::not_tried:
      return '?';
    case Tried::finished:
      return '+';
    case Tried::failed_transfer:
      return '*';
    case Tried::bad_sector:
      break;
  }
  return '-';
}

std::optional<Tried> state_of(std::string_view status) {
  if (status == "?") return Tried::not_tried;
  if (status == "+") return Tried::finished;
  if (status == "*" || status == "/") return Tried::failed_transfer;
  if (status == "-") return Tried::bad_sector;
  return std::nullopt;
}

/// A comment is one line whatever the text holds.
std::string comment(const std::string& name, std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  return "# " + name + text + "\n";
}

std::string_view without_blanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Cuts the first line off `text`, without its end.
std::string_view take_line(std::string_view* text) {
  const std::string_view line = text->substr(0, text->find('\n'));
  text->remove_prefix(std::min(text->size(), line.size() + 1));
  return line;
}

/// The words of a line up to a comment, which begins at a "#" at its start or behind a blank.
std::vector<std::string_view> words_of(std::string_view line) {
  std::vector<std::string_view> words;
  for (std::string_view rest = without_blanks(line); !rest.empty() && rest.front() != '#';) {
    words.push_back(rest.substr(0, rest.find_first_of(kBlanks)));
    rest = without_blanks(rest.substr(words.back().size()));
  }
  return words;
}

/// An integer as C++ writes it, decimal, 0x hexadecimal or 0 octal, up to kMostBytes.
std::optional<std::uint64_t> number_of(std::string_view word) {
  int base = 10;
  if (word.size() > 1 && word.front() == '0') {
    const bool hexadecimal = word[1] == 'x' || word[1] == 'X';
    base = hexadecimal ? 16 : 8;
    word.remove_prefix(hexadecimal ? 2 : 1);
  }
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value, base);
  if (error != std::errc() || end != word.data() + word.size() || value > kMostBytes) return std::nullopt;
  return value;
}

std::optional<std::int64_t> decimal_of(std::string_view word) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size() || value <= 0) return std::nullopt;
  return value;
}

/// What a comment before the status line tells of the disk, where it is ours.
void take_comment(std::string_view line, MapFile* file) {
  std::string_view text = without_blanks(line);
  text = without_blanks(text.substr(text.empty() ? 0 : 1));
  const auto behind = [&](std::string_view name) {
    // The blank behind the colon is gone where nothing follows it.
    const std::string_view start = without_blanks(name);
    return text.starts_with(start) ? std::optional(without_blanks(text.substr(start.size()))) : std::nullopt;
  };
  if (const auto model = behind(kModel)) file->model = *model;
  if (const auto serial = behind(kSerial)) file->serial = *serial;
  if (const auto sectors = behind(kSectors)) file->sectors = decimal_of(*sectors);
  if (const auto logical = behind(kLogical)) file->logical = decimal_of(*logical);
}

std::string status_problem(const std::vector<std::string_view>& words) {
  if (words.size() < 2 || words.size() > 3 || !number_of(words[0]) || words[1].size() != 1 ||
      kRunStatuses.find(words[1]) == std::string_view::npos || (words.size() == 3 && !decimal_of(words[2]))) {
    return "this is no status line, as in \"0x00120000 ? 1\"";
  }
  return {};
}

/// A block as the file has it, in bytes.
struct ByteBlock {
  std::uint64_t first = 0;
  std::uint64_t end = 0;
  Tried state = Tried::not_tried;
};

/// Adds the block that the words tell to those before it, neighbours of one state as one. Empty, or what is wrong.
std::string take_block(const std::vector<std::string_view>& words, std::vector<ByteBlock>* blocks) {
  const auto first = words.size() == 3 ? number_of(words[0]) : std::nullopt;
  const auto size = words.size() == 3 ? number_of(words[1]) : std::nullopt;
  const auto state = words.size() == 3 ? state_of(words[2]) : std::nullopt;
  if (!first || !size || !state) return "this is no block, as in \"0x00117000 0x00000200 -\"";
  if (*size > kMostBytes - *first) return "the block ends behind 2^62 bytes";
  if (!blocks->empty() && blocks->back().end != *first) {
    return "the block begins at byte " + std::to_string(*first) + ", the one before ends at byte " +
           std::to_string(blocks->back().end);
  }
  if (!blocks->empty() && blocks->back().state == *state) {
    blocks->back().end += *size;
  } else {
    blocks->push_back({*first, *first + *size, *state});
  }
  return {};
}

/// Sectors of which a block has a part alone stay not tried.
ReadMap in_sectors(const std::vector<ByteBlock>& blocks) {
  constexpr std::uint64_t kSector = SectorSize;
  ReadMap map = untried_map(static_cast<std::int64_t>((blocks.back().end + kSector - 1) / kSector));
  for (const ByteBlock& block : blocks) {
    const auto first = static_cast<std::int64_t>((block.first + kSector - 1) / kSector);
    mark(first, static_cast<std::int64_t>(block.end / kSector) - first, block.state, &map);
  }
  return map;
}

}  // namespace

std::string map_text(const ReadMap& map, const MapHeader& header) {
  const bool left = count(map, Tried::not_tried) > 0 || count(map, Tried::failed_transfer) > 0;
  std::string text = comment("Mapfile. Created by Sectorix version ", header.version);
  text += comment(kModel, header.model);
  text += comment(kSerial, header.serial);
  text += comment(kSectors, std::to_string(map.sectors()));
  text += comment(kLogical, std::to_string(header.logical));
  text += "# current_pos  current_status  current_pass\n";
  text += hex(header.next_lba) + "     " + (left ? "?" : "+") + "               1\n";
  text += "#      pos        size  status\n";
  for (const ReadBlock& block : map.blocks) {
    text += hex(block.first) + "  " + hex(block.sectors) + "  " + status_of(block.state) + "\n";
  }
  return text;
}

std::string read_map_file(std::string_view text, MapFile* file) {
  *file = {};
  std::vector<ByteBlock> blocks;
  bool has_status = false;
  for (int number = 1; !text.empty(); ++number) {
    const std::string_view line = take_line(&text);
    const std::vector<std::string_view> words = words_of(line);
    if (words.empty()) {
      if (!has_status) take_comment(line, file);
      continue;
    }
    const std::string problem = has_status ? take_block(words, &blocks) : status_problem(words);
    if (!problem.empty()) return "line " + std::to_string(number) + ": " + problem;
    has_status = true;
  }
  if (blocks.empty()) return has_status ? "there are no blocks" : "there is no status line";
  file->map = in_sectors(blocks);
  return {};
}
