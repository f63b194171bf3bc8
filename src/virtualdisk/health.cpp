#include "virtualdisk/health.h"

#include <algorithm>
#include <span>

#include "platform/bytes.h"
#include "virtualdisk/disk_file.h"

namespace virtualdisk {
namespace {

constexpr std::uint64_t kKelvin = 273;
constexpr std::size_t kTemperatureAt = 1;

using Where = HealthField::Where;

constexpr HealthField scsi(std::string_view name, ScsiValue which) {
  return {name, Where::scsi, static_cast<std::size_t>(which), 8};
}

constexpr std::array<HealthField, 25> kFields = {{
    {"critical-warning", Where::log, 0, 1},
    {"temperature", Where::log, kTemperatureAt, 2, kKelvin},
    {"spare", Where::log, 3, 1},
    {"spare-threshold", Where::log, 4, 1},
    {"used", Where::log, 5, 1},
    {"data-read", Where::log, 32, 16},
    {"data-written", Where::log, 48, 16},
    {"host-reads", Where::log, 64, 16},
    {"host-writes", Where::log, 80, 16},
    {"busy-minutes", Where::log, 96, 16},
    {"power-cycles", Where::log, 112, 16},
    {"power-on-hours", Where::log, 128, 16},
    {"unsafe-shutdowns", Where::log, 144, 16},
    {"media-errors", Where::log, 160, 16},
    {"error-log-entries", Where::log, 176, 16},
    {"warning-minutes", Where::log, 192, 4},
    {"critical-minutes", Where::log, 196, 4},
    {"warning-temperature", Where::controller, 266, 2, kKelvin},
    {"critical-temperature", Where::controller, 268, 2, kKelvin},
    scsi("failing", ScsiValue::failing),
    scsi("asc", ScsiValue::asc),
    scsi("ascq", ScsiValue::ascq),
    scsi("read-uncorrected", ScsiValue::read_uncorrected),
    scsi("write-uncorrected", ScsiValue::write_uncorrected),
    scsi("grown-defects", ScsiValue::grown_defects),
}};

/// Adds to a number of `size` bytes, carrying as far as it has bytes.
void add(std::span<std::uint8_t> page, std::size_t at, std::size_t size, std::uint64_t step) {
  unsigned carry = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned byte = i < sizeof(step) ? static_cast<unsigned>(step >> (8 * i) & 0xFF) : 0;
    const unsigned sum = page[at + i] + byte + carry;
    page[at + i] = static_cast<std::uint8_t>(sum & 0xFF);
    carry = sum >> 8U;
  }
}

std::span<std::uint8_t> page_of(Health& health, const HealthField& field) {
  return field.where == Where::log ? std::span<std::uint8_t>(health.log) : std::span<std::uint8_t>(health.controller);
}

void put_text(ControllerPage& page, std::size_t at, std::size_t size, std::string_view text) {
  for (std::size_t i = 0; i < size; ++i)
    page[at + i] = i < text.size() ? static_cast<std::uint8_t>(text[i]) : std::uint8_t{' '};
}

ControllerPage controller_page(const DiskFile& file) {
  constexpr std::uint64_t kVendor = 0x1B36;
  constexpr std::uint64_t kVersion = 0x00010400;  // 1.4
  constexpr std::uint64_t kWarning = 70 + kKelvin;
  constexpr std::uint64_t kCritical = 80 + kKelvin;
  ControllerPage page{};
  bytes::put_le(page, 0, 2, kVendor);
  put_text(page, 4, 20, file.serial);
  put_text(page, 24, 40, file.model);
  put_text(page, 64, 8, file.firmware);
  bytes::put_le(page, 80, 4, kVersion);
  bytes::put_le(page, 266, 2, kWarning);
  bytes::put_le(page, 268, 2, kCritical);
  bytes::put_le(page, 516, 4, 1);  // namespaces
  return page;
}

}  // namespace

const HealthField* health_field(std::string_view name) {
  const auto* const found =
      std::find_if(kFields.begin(), kFields.end(), [&](const HealthField& field) { return field.name == name; });
  return found == kFields.end() ? nullptr : found;
}

int Health::celsius() const {
  const auto kelvin = bytes::le16(log, kTemperatureAt);
  return kelvin == 0 ? 0 : static_cast<int>(kelvin) - static_cast<int>(kKelvin);
}

Health make_health(const DiskFile& file) {
  Health health;
  health.log[1] = static_cast<std::uint8_t>((34 + kKelvin) & 0xFF);
  health.log[2] = static_cast<std::uint8_t>((34 + kKelvin) >> 8U);
  health.log[3] = 100;  // spare
  health.log[4] = 10;   // its threshold
  bytes::put_le(health.log, 112, 8, 12);
  bytes::put_le(health.log, 128, 8, 1000);
  health.controller = controller_page(file);
  health.growth = file.health_growth;
  return health;
}

void set_health(Health& health, const HealthValue& value) {
  const HealthField& field = *value.field;
  if (field.where == Where::scsi) {
    health.values.at(field.at) = value.value;
    return;
  }
  const std::span<std::uint8_t> page = page_of(health, field);
  for (std::size_t i = 0; i < field.size; ++i) page[field.at + i] = 0;
  bytes::put_le(page, field.at, std::min<std::size_t>(field.size, 8), value.value + field.bias);
}

void grow(Health& health, Event event) {
  for (const HealthGrowth& growth : health.growth) {
    if (growth.on != event) continue;
    const HealthField& field = *growth.by.field;
    if (field.where == Where::scsi) {
      health.values.at(field.at) += growth.by.value;
    } else {
      add(page_of(health, field), field.at, field.size, growth.by.value);
    }
  }
}

}  // namespace virtualdisk
