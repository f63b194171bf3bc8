#include "measure/transfer_record.h"

#include <array>
#include <cstddef>

const char* phase_text(Phase phase) {
  constexpr std::array<const char*, 5> kTexts = {"reading", "writing", "verifying", "restoring", "searching"};
  return kTexts.at(static_cast<std::size_t>(phase));
}

const char* phase_name(Phase phase) {
  constexpr std::array<const char*, 5> kNames = {"read", "write", "verify", "restore", "search"};
  return kNames.at(static_cast<std::size_t>(phase));
}
