#include "ops/range.h"

#include <algorithm>
#include <string>

#include "disk/counters.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/run.h"
#include "smart/identification.h"

std::int64_t take_range() {
  const std::int64_t start = number_in(form1.TxtStartLBA.text());
  form1.TxtStartLBA.set_text(std::to_string(start));
  counters.No_Secs = std::max<std::int64_t>(number_in(form1.TxtNoSecs.text()), 1);
  form1.TxtNoSecs.set_text(std::to_string(counters.No_Secs));
  return start;
}

void show_range_of_command_line() {
  if (run.start_lba != 0) form1.TxtStartLBA.set_text(std::to_string(run.start_lba));
  if (run.count != 0) {
    form1.TxtNoSecs.set_text(std::to_string(run.count));
  } else if (run.start_lba != 0) {
    form1.TxtNoSecs.set_text(std::to_string(std::max<std::int64_t>(identification.Drive_Sectors - run.start_lba, 1)));
  }
}

std::int64_t read_chunk(std::int64_t sectors) {
  // Two steps, the lower one odd: kept, so that rates compare with earlier runs.
  constexpr std::int64_t kChunk = 16065;
  constexpr std::int64_t kLargeChunk = 20480;
  if (sectors >= kLargeChunk) return kLargeChunk;
  return std::min(sectors, kChunk);
}
