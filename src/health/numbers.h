#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "health/health.h"

/// One number of a drive's health, as all results name it.
struct HealthNumber {
  const char* key;                                          // in JSON and in the history; names its unit
  const char* label;                                        // in the report
  const char* variable;                                     // behind "QV_H_", or null
  bool only_grows;                                          // the history says since when
  std::optional<std::int64_t> (*of)(const Health& health);  // what is beyond the largest is the largest
};

/// All of them, in the order in which they are shown.
std::span<const HealthNumber> health_numbers();
