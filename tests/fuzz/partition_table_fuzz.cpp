#include <cstdint>
#include <cstdlib>

#include "buffer/partition_table.h"

/// Any bytes are described, entry by entry as far as they reach.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = partition_table_text({data, size});
  const std::size_t entries = size < 446 ? 0 : (size - 446) / 16;
  std::size_t described = 0;
  for (std::size_t at = 0; (at = text.find("Partition ", at)) != std::string::npos; ++at) ++described;
  if (described != (entries > 4 ? 4 : entries)) std::abort();
  return 0;
}
