#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What a drive says of its own state at one moment, whatever protocol it says it in. What it does not say is absent.

enum class HealthProtocol : std::uint8_t { none, nvme, ata, scsi };

/// One SMART attribute, all of it.
struct HealthAttribute {
  std::uint8_t id = 0;
  std::uint16_t flags = 0;
  std::uint8_t current = 0;
  std::uint8_t worst = 0;
  std::uint8_t threshold = 0;  // 0: none, or not read
  std::uint64_t raw = 0;       // all six bytes

  bool foretells_failure() const { return (flags & 1U) != 0; }
  bool at_threshold() const { return threshold != 0 && current <= threshold; }
  friend bool operator==(const HealthAttribute&, const HealthAttribute&) = default;
};

/// A request that brought nothing.
struct Unanswered {
  std::string request;
  std::uint32_t code = 0;  // system error code; 0 where the drive or nobody at all was the reason
  std::string reason;
};

/// The bytes that came, as they came.
struct RawPage {
  std::string name;
  std::vector<std::uint8_t> bytes;
};

using Count = std::optional<std::uint64_t>;

struct Health {
  HealthProtocol protocol = HealthProtocol::none;
  bool answered = false;  // a page was read that tells something
  std::vector<Unanswered> unanswered;
  std::vector<RawPage> pages;

  std::optional<bool> driver_predicts_failure;  // IOCTL_STORAGE_PREDICT_FAILURE
  std::optional<int> celsius;
  std::optional<int> warning_celsius;  // from which on the maker calls it too warm
  std::optional<int> critical_celsius;
  Count power_cycles;

  // NVMe.
  Count power_on_hours;  // ATA drives count it in units of their own
  std::optional<std::uint8_t> critical_warning;
  std::optional<std::uint8_t> spare;            // percent
  std::optional<std::uint8_t> spare_threshold;  // percent; absent where the drive gives a reserved value
  std::optional<std::uint8_t> used;             // percent of the rated endurance; 255 and more is 255
  Count data_read;                              // thousands of 512 bytes
  Count data_written;
  Count unsafe_shutdowns;
  Count media_errors;
  Count error_log_entries;
  Count warning_minutes;
  Count critical_minutes;

  // ATA.
  std::optional<bool> status_says_failing;  // SMART RETURN STATUS
  std::vector<HealthAttribute> attributes;
  Count reallocated;  // sectors
  Count pending;
  Count uncorrectable;
  Count reported_uncorrectable;  // errors that the drive told to its host
  Count crc_errors;

  // SCSI.
  std::optional<std::uint8_t> asc;  // informational exceptions
  std::optional<std::uint8_t> ascq;
  Count read_uncorrected;
  Count write_uncorrected;
  Count grown_defects;
};

/// The attribute `id`, or null.
const HealthAttribute* attribute_of(const Health& health, std::uint8_t id);
