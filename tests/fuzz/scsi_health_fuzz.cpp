#include <cstdint>
#include <cstdlib>

#include "health/pages.h"
#include "health/verdict.h"

/// SCSI log pages and the header of a defect list.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes page(data, size);
  Health health;
  const bool taken = take_exceptions(page, &health);
  if (taken != health.asc.has_value()) std::abort();
  take_scsi_temperature(page, &health);
  if (health.celsius && (*health.celsius <= 0 || *health.celsius >= 255)) std::abort();
  health.read_uncorrected = uncorrected_errors(page, 3);
  health.write_uncorrected = uncorrected_errors(page, 2);
  health.grown_defects = grown_defects(page);
  if (health.grown_defects.value_or(0) > 0xFFFF) std::abort();
  judge(health, health, {});
  return 0;
}
