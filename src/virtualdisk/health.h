#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "virtualdisk/page.h"

namespace virtualdisk {

struct DiskFile;
enum class Event : std::uint8_t;

/// Something that a drive says of its health, by the name that a disk file calls it.
struct HealthField {
  enum class Where : std::uint8_t { log, controller, scsi };
  std::string_view name;
  Where where = Where::log;
  std::size_t at = 0;      // byte in the NVMe page; index among the SCSI values
  std::size_t size = 0;    // bytes
  std::uint64_t bias = 0;  // added to what the disk file says: Kelvin for Celsius
};

/// The field `name`, or null.
const HealthField* health_field(std::string_view name);

/// `health NAME VALUE` of a disk file, or `grow NAME VALUE on EVENT`.
struct HealthValue {
  const HealthField* field = nullptr;
  std::uint64_t value = 0;
};

struct HealthGrowth {
  HealthValue by;
  Event on{};
};

inline constexpr std::size_t kControllerBytes = 4096;
using ControllerPage = std::array<std::uint8_t, kControllerBytes>;

/// What SCSI drives say in single values.
enum class ScsiValue : std::size_t { failing, asc, ascq, read_uncorrected, write_uncorrected, grown_defects, count };

/// A drive's health: an NVMe drive's two pages (NVM Express base specification, SMART / Health Information log and
/// Identify Controller), a SCSI drive's values.
struct Health {
  Page log{};
  std::optional<Page> later;  // in place of `log` once that was asked for
  ControllerPage controller{};
  std::array<std::uint64_t, static_cast<std::size_t>(ScsiValue::count)> values{};
  std::vector<HealthGrowth> growth;
  bool asked = false;  // the log, or its SCSI counterpart

  std::uint64_t value(ScsiValue which) const { return values.at(static_cast<std::size_t>(which)); }
  int celsius() const;
};

/// The health of a drive that is well, with what the file says of it.
Health make_health(const DiskFile& file);

/// Changes one value.
void set_health(Health& health, const HealthValue& value);

/// `event` has happened: values grow.
void grow(Health& health, Event event);

}  // namespace virtualdisk
