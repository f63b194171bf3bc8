#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "buffer/edit_parse.h"
#include "buffer/hex_view.h"

/// Any text parses or fails within its buffer, and what parsed to whole sectors survives another view.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kBufferLength = 1024;
  const EditParse parse = parse_edit_view({reinterpret_cast<const char*>(data), size}, kBufferLength);
  if (parse.outcome != EditOutcome::ok) {
    if (parse.address > 0xFFFF + 16) std::abort();
    return 0;
  }
  if (parse.bytes.size() > kBufferLength) std::abort();
  if (parse.bytes.size() % 512 != 0) return 0;
  const auto sectors = static_cast<std::int64_t>(parse.bytes.size() / 512);
  const EditParse again = parse_edit_view(hex_view(parse.bytes, 0, sectors, kEditTitle), kBufferLength);
  if (again.outcome != EditOutcome::ok || again.bytes != parse.bytes) std::abort();
  if (list_changes(parse.bytes, again.bytes).count != 0) std::abort();
  return 0;
}
