#include <cstdint>
#include <cstdlib>

#include "health/pages.h"
#include "health/verdict.h"

/// Two NVMe pages, before and after: what is taken lies within its limits, and every pair has a verdict.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes all(data, size);
  Health before;
  Health after;
  take_nvme_log(all.first(size / 2), &before);
  take_nvme_log(all.subspan(size / 2), &after);
  for (const Health& health : {before, after}) {
    if (health.answered != health.spare.has_value()) std::abort();
    if (health.spare.value_or(0) > 100 || health.spare_threshold.value_or(0) > 100) std::abort();
    if (health.celsius && *health.celsius == -273) std::abort();
  }
  const Verdict verdict = judge(before, after, {});
  const bool read = before.answered || after.answered;
  if (read == (verdict.grade == Grade::no_data)) std::abort();
  if (read && verdict.facts.empty()) std::abort();
  return 0;
}
