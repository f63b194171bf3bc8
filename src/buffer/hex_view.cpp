#include "buffer/hex_view.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "buffer/hex_text.h"
#include "disk/progress.h"
#include "form/form1.h"

namespace {

constexpr std::size_t kLineBytes = 16;
constexpr std::size_t kOffsetColumn = 2;  // after the line end that opens the line
constexpr std::size_t kBytesColumn = 7;
constexpr std::size_t kHyphenColumn = 31;  // between the eighth and the ninth byte
constexpr std::size_t kCharactersColumn = 58;
constexpr std::size_t kLineLength = 75;

constexpr std::size_t kHeaderReserve = 64;  // line ends, LBA and position of "[Sector ...]"

/// Only the codes 0 to 13 are masked; the text box shows the others its own way.
constexpr char shown(std::uint8_t byte) {
  constexpr std::uint8_t kLastMasked = 13;
  return byte <= kLastMasked ? '.' : static_cast<char>(byte);
}

void append_line(std::string& text, std::span<const std::uint8_t> bytes, std::size_t offset) {
  std::array<char, kLineLength> line;
  line.fill(' ');
  line[0] = '\r';
  line[1] = '\n';
  std::copy_n(kHexPairs[offset / 256].begin(), 2, &line[kOffsetColumn]);
  std::copy_n(kHexPairs[offset % 256].begin(), 2, &line[kOffsetColumn + 2]);
  line[kHyphenColumn] = '-';
  constexpr std::size_t kHalf = kLineBytes / 2;
  for (std::size_t half = 0; half < 2; ++half) {
    char* pair = &line[half == 0 ? kBytesColumn : kHyphenColumn + 2];
    char* character = &line[kCharactersColumn + half * (kHalf + 1)];
    for (std::size_t i = 0; i < kHalf; ++i, pair += 3, ++character) {
      const std::uint8_t byte = bytes[offset + half * kHalf + i];
      std::copy_n(kHexPairs[byte].begin(), 2, pair);
      *character = shown(byte);
    }
  }
  text.append(line.data(), line.size());
}

}  // namespace

std::string hex_view(std::span<const std::uint8_t> bytes, std::int64_t first_lba, std::int64_t sectors,
                     std::string_view title) {
  const std::int64_t whole = static_cast<std::int64_t>(bytes.size()) / SectorSize;
  const auto shown_sectors =
      static_cast<std::size_t>(std::max<std::int64_t>(0, std::min({sectors, whole, kShownSectors})));
  constexpr auto kBytes = static_cast<std::size_t>(SectorSize);

  std::string text;
  text.reserve(shown_sectors * (kHeaderReserve + kBytes / kLineBytes * kLineLength) + 2 * title.size() +
               kHeaderReserve);
  text += "\r\n\r\n";
  text += title;
  text += "\r\n";
  for (std::size_t sector = 0; sector < shown_sectors; ++sector) {
    const std::int64_t lba = first_lba + static_cast<std::int64_t>(sector);
    text += "\r\n\r\n[Sector " + std::to_string(lba) + "]  " + std::to_string(lba / kSectorsPerMb) + "MB";
    for (std::size_t line = 0; line < kBytes; line += kLineBytes) append_line(text, bytes, sector * kBytes + line);
  }
  text += "\r\n\r\n========= END OF SECTOR DATA ================\r\n";
  return text;
}
