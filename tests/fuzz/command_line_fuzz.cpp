#include <cstdint>
#include <cstdlib>

#include "app/command_line.h"

/// Whatever the command line says, it is understood or refused in one line, and what was understood is in range.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Run asked;
  const std::string error = parse_command_line({reinterpret_cast<const char*>(data), size}, &asked);
  if (!error.empty()) return 0;
  if (asked.start_lba < 0 || asked.count < 0 || asked.passes < 0) std::abort();
  if (asked.usage) return 0;
  if (asked.op && asked.searched.find("/D:") == std::string::npos) std::abort();
  if (asked.op == Operation::write && !asked.serial) std::abort();
  if (asked.op == Operation::search && !asked.find) std::abort();
  return 0;
}
