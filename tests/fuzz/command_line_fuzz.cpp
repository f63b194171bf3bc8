#include <cstdint>
#include <cstdlib>

#include "app/command_line.h"
#include "app/commands.h"

/// Whatever the command line says, it is understood or refused in one line, and what was understood is in range.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Asked result;
  const std::string error = parse_command_line({reinterpret_cast<const char*>(data), size}, &result);
  if (!error.empty()) return 0;
  if (result.start_lba < 0 || result.count < 0 || result.passes < 0) std::abort();
  if (result.mode == Mode::usage) return 0;
  if ((result.mode == Mode::batch) == result.op.empty()) std::abort();
  if (result.mode != Mode::batch) return 0;
  if (result.named_drives.size() != 1) std::abort();
  const Command& command = *command_named(result.op);
  if (command.writes != result.writes || (command.needs_serial && !result.serial)) std::abort();
  if (command.takes_find != result.find.has_value()) std::abort();
  if (command.most_count != 0 && result.count > command.most_count) std::abort();
  return 0;
}
