#include <algorithm>

#include "health/pages.h"
#include "platform/bytes.h"

namespace {

constexpr std::size_t kHead = 4;  // of a log page, and of each of its parameters

/// The value of parameter `code` of log page `number`; empty where there is none.
Bytes parameter(Bytes page, std::uint8_t number, std::size_t code) {
  constexpr std::uint8_t kNumberBits = 0x3F;
  if (page.size() < kHead || (page[0] & kNumberBits) != number) return {};
  Bytes rest = page.subspan(kHead, std::min<std::size_t>(page.size() - kHead, bytes::be16(page, 2)));
  while (rest.size() >= kHead) {
    const std::size_t length = std::min<std::size_t>(rest[3], rest.size() - kHead);
    if (bytes::be16(rest, 0) == code) return rest.subspan(kHead, length);
    rest = rest.subspan(kHead + length);
  }
  return {};
}

constexpr std::uint8_t kNoTemperature = 0xFF;

}  // namespace

bool take_exceptions(Bytes page, Health* health) {
  const Bytes value = parameter(page, 0x2F, 0);
  if (value.size() < 2) return false;
  health->protocol = HealthProtocol::scsi;
  health->answered = true;
  health->asc = value[0];
  health->ascq = value[1];
  if (value.size() >= 3 && value[2] != 0 && value[2] != kNoTemperature) health->celsius = value[2];
  return true;
}

bool take_scsi_temperature(Bytes page, Health* health) {
  constexpr std::size_t kReference = 1;
  const Bytes now = parameter(page, 0x0D, 0);
  if (now.size() < 2) return false;
  if (now[1] != 0 && now[1] != kNoTemperature) health->celsius = now[1];
  const Bytes reference = parameter(page, 0x0D, kReference);
  if (reference.size() >= 2 && reference[1] != 0 && reference[1] != kNoTemperature)
    health->warning_celsius = reference[1];
  return true;
}

Count uncorrected_errors(Bytes page, std::uint8_t number) {
  constexpr std::size_t kTotalUncorrected = 6;
  const Bytes value = parameter(page, number, kTotalUncorrected);
  if (value.empty() || value.size() > sizeof(std::uint64_t)) return std::nullopt;
  std::uint64_t count = 0;
  for (const std::uint8_t byte : value) count = count << 8U | byte;
  return count;
}

Count grown_defects(Bytes header) {
  constexpr std::uint8_t kGrownListed = 0x08;
  constexpr std::uint8_t kFormatBits = 0x07;
  if (header.size() < 4 || (header[1] & kGrownListed) == 0) return std::nullopt;
  // Entry lengths by format: block addresses; bytes from index, physical sectors.
  const int format = header[1] & kFormatBits;
  const std::size_t entry = format == 0 ? 4 : format == 4 || format == 5 ? 8 : 0;
  return entry == 0 ? Count() : Count(bytes::be16(header, 2) / entry);
}
