#include "journal/record.h"

#include <algorithm>
#include <string_view>

#include "disk/drive.h"
#include "journal/crc32c.h"
#include "platform/bytes.h"

namespace {

constexpr std::string_view kMagic = "SECTORIX JOURNAL";
constexpr std::uint32_t kVersion = 1;

/// A field of the header.
struct Place {
  std::size_t at;
  std::size_t size;
};

constexpr Place kVersionPlace{16, 4};
constexpr Place kStatePlace{20, 4};
constexpr Place kLbaPlace{24, 8};
constexpr Place kSectorsPlace{32, 8};
constexpr Place kDiskSectorsPlace{40, 8};
constexpr Place kPatternLengthPlace{48, 4};
constexpr Place kPatternPlace{52, 16};
constexpr Place kModelPlace{256, 256};
constexpr Place kSerialPlace{512, 256};
constexpr Place kFirmwarePlace{768, 256};
constexpr Place kFilePlace{1024, 2048};
constexpr Place kHeaderSumPlace{4088, 4};
constexpr Place kWholeSumPlace{4092, 4};

void put(Header& header, const Place& place, std::uint64_t value) {
  bytes::put_le(header, place.at, place.size, value);
}

void put_text(Header& header, const Place& place, const std::string& text) {
  std::copy(text.begin(), text.end(), header.begin() + static_cast<std::ptrdiff_t>(place.at));
}

std::uint64_t number_at(std::span<const std::uint8_t> header, const Place& place) {
  return bytes::le(header, place.at, place.size);
}

std::string text_at(std::span<const std::uint8_t> header, const Place& place) {
  const auto field = header.subspan(place.at, place.size);
  return {field.begin(), std::find(field.begin(), field.end(), std::uint8_t{0})};
}

/// The sum of a header behind bytes whose sum is `before`. Without its sums: bytes and their own sum have the same sum
/// whatever they are.
std::uint32_t sum_of(std::span<const std::uint8_t> header, std::uint32_t before) {
  return crc32c::sum(header.first(kHeaderSumPlace.at), before);
}

bool is_possible(const Record& record) {
  const std::int64_t least = record.state == RecordState::pending ? 1 : 0;
  return record.lba >= 0 && record.disk.sectors >= 0 && record.sectors >= least &&
         record.sectors <= std::min(record.disk.sectors, kLargestTransfer) &&
         record.lba <= record.disk.sectors - record.sectors;
}

}  // namespace

bool fits(const Record& record) {
  const auto has_room = [](const std::string& text, const Place& place) {
    return text.size() < place.size && text.find('\0') == std::string::npos;
  };
  return record.pattern.size() <= kPatternPlace.size && has_room(record.disk.model, kModelPlace) &&
         has_room(record.disk.serial, kSerialPlace) && has_room(record.disk.firmware, kFirmwarePlace) &&
         has_room(record.disk.file, kFilePlace);
}

Header encode(const Record& record, std::uint32_t contents_sum) {
  Header header{};
  std::copy(kMagic.begin(), kMagic.end(), header.begin());
  put(header, kVersionPlace, kVersion);
  put(header, kStatePlace, static_cast<std::uint32_t>(record.state));
  put(header, kLbaPlace, static_cast<std::uint64_t>(record.lba));
  put(header, kSectorsPlace, static_cast<std::uint64_t>(record.sectors));
  put(header, kDiskSectorsPlace, static_cast<std::uint64_t>(record.disk.sectors));
  put(header, kPatternLengthPlace, record.pattern.size());
  std::copy(record.pattern.begin(), record.pattern.end(),
            header.begin() + static_cast<std::ptrdiff_t>(kPatternPlace.at));
  put_text(header, kModelPlace, record.disk.model);
  put_text(header, kSerialPlace, record.disk.serial);
  put_text(header, kFirmwarePlace, record.disk.firmware);
  put_text(header, kFilePlace, record.disk.file);
  put(header, kHeaderSumPlace, sum_of(header, 0));
  put(header, kWholeSumPlace, sum_of(header, contents_sum));
  return header;
}

std::optional<Record> decode(std::span<const std::uint8_t> header) {
  if (header.size() < kHeaderBytes || !std::equal(kMagic.begin(), kMagic.end(), header.begin()) ||
      number_at(header, kVersionPlace) != kVersion || number_at(header, kHeaderSumPlace) != sum_of(header, 0)) {
    return std::nullopt;
  }
  const std::uint64_t state = number_at(header, kStatePlace);
  const std::uint64_t pattern_length = number_at(header, kPatternLengthPlace);
  if (state > static_cast<std::uint32_t>(RecordState::done) || pattern_length > kPatternPlace.size) return std::nullopt;
  Record record;
  record.state = static_cast<RecordState>(state);
  record.lba = static_cast<std::int64_t>(number_at(header, kLbaPlace));
  record.sectors = static_cast<std::int64_t>(number_at(header, kSectorsPlace));
  const auto pattern = header.subspan(kPatternPlace.at, pattern_length);
  record.pattern.assign(pattern.begin(), pattern.end());
  record.disk = {.model = text_at(header, kModelPlace),
                 .serial = text_at(header, kSerialPlace),
                 .firmware = text_at(header, kFirmwarePlace),
                 .sectors = static_cast<std::int64_t>(number_at(header, kDiskSectorsPlace)),
                 .file = text_at(header, kFilePlace)};
  return is_possible(record) ? std::optional(record) : std::nullopt;
}

bool contents_hold(std::span<const std::uint8_t> header, std::span<const std::uint8_t> contents) {
  return number_at(header, kWholeSumPlace) == sum_of(header, crc32c::sum(contents));
}

std::vector<std::uint8_t> overwritten(const Record& record, std::span<const std::uint8_t> former) {
  std::vector<std::uint8_t> bytes(former.begin(), former.end());
  const std::size_t length = record.pattern.size();
  // Whole patterns alone, as the test fills its buffer.
  const std::size_t filled = length == 0 ? 0 : bytes.size() / length * length;
  for (std::size_t i = 0; i < filled; ++i) bytes[i] = record.pattern[i % length];
  return bytes;
}
