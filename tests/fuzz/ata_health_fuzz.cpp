#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "health/pages.h"
#include "health/verdict.h"

/// SMART pages, status bytes and the ATA Information page. The checksum is put right, or next to nothing would pass it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes all(data, size);
  status_of_sense(all);
  if (const auto identify = identify_in(all); identify && identify->size() != 512) std::abort();
  constexpr std::size_t kPage = 512;
  std::vector<std::uint8_t> pages(data, data + size);
  pages.resize(2 * kPage);
  for (const std::size_t page : {std::size_t{0}, kPage}) {
    const auto first = pages.begin() + static_cast<std::ptrdiff_t>(page);
    first[511] = 0;
    first[511] = static_cast<std::uint8_t>(0U - std::accumulate(first, first + 511, 0U));
  }
  Health health;
  const bool taken = take_ata_pages(Bytes(pages).first(kPage), Bytes(pages).subspan(kPage), size % 2 == 0, &health);
  if (taken != !health.attributes.empty() || health.attributes.size() > 30) std::abort();
  for (const HealthAttribute& attribute : health.attributes) {
    if (attribute.raw >> 48U != 0) std::abort();
  }
  const Verdict verdict = judge({}, health, {});
  if (taken == (verdict.grade == Grade::no_data)) std::abort();
  return 0;
}
