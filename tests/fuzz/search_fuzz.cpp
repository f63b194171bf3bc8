#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "buffer/search.h"

namespace {

/// 0, or the position from 1.
std::int64_t plainly(const Search& search, std::vector<std::uint8_t> memory) {
  if (search.pattern.empty()) return 0;
  if (search.kind == SearchKind::text_any_case) {
    for (std::uint8_t& byte : memory) byte = search.upper_case[byte];
  }
  const auto at = search.kind == SearchKind::not_equal
                      ? std::find_if(memory.begin(), memory.end(), [&](auto byte) { return byte != search.pattern[0]; })
                      : std::search(memory.begin(), memory.end(), search.pattern.begin(), search.pattern.end());
  return at == memory.end() ? 0 : at - memory.begin() + 1;
}

}  // namespace

/// The first line end separates the search string from the memory searched, which is repeated some times so that it
/// is longer than a step of the kernels. They find what a plain search finds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::uint8_t* const line_end = std::find(data, data + size, std::uint8_t{'\n'});
  if (line_end == data + size) return 0;
  const Search search = parse_search({reinterpret_cast<const char*>(data), static_cast<std::size_t>(line_end - data)});
  if ((search.problem == SearchProblem::none) != search.error.empty()) std::abort();
  if (search.problem != SearchProblem::none) return 0;
  std::vector<std::uint8_t> memory;
  for (int i = 0; i < 4; ++i) memory.insert(memory.end(), line_end + 1, data + size);
  memory.shrink_to_fit();
  if (FindStringPosinBuffer(search, memory) != plainly(search, memory)) std::abort();
  return 0;
}
