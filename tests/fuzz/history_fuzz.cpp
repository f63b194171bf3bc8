#include <cstdint>
#include <cstdlib>

#include "results/history.h"

/// Any line of a history is one, which then survives being written again, or none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto line = read_history_line({reinterpret_cast<const char*>(data), size});
  if (!line) return 0;
  if (line->date.month < 1 || line->date.month > 12) std::abort();
  grown_since(*line, *line);
  HistoryLine plain = *line;
  plain.model = plain.serial = "A \"quoted\" \\ text";
  plain.firmware = plain.operation = plain.verdict = plain.why = {};
  std::erase_if(plain.numbers, [](const auto& number) {
    return number.first.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") != std::string::npos;
  });
  const auto again = read_history_line(history_text(plain));
  if (!again || again->serial != plain.serial || again->numbers != plain.numbers) std::abort();
  return 0;
}
