#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "device/storage_query.h"

/// What a drive tells to somebody without administrator's rights. Texts may be empty.
struct ToldDrive {
  std::string model;
  std::string serial;
  std::string firmware;
  std::int64_t sectors = 0;  // of 512 bytes; 0 when it does not tell
  StorageBus bus = StorageBus::unknown;
};

/// Asks drive `drive` by requests that need no rights and touch no medium; nothing where none answers.
std::optional<ToldDrive> told_without_rights(int drive);

/// Model, serial number, size and bus of drive `drive` in words, asked in that way; empty for a drive that does not
/// answer.
std::string drive_words(int drive);
