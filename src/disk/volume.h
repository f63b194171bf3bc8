#pragma once

#include <array>
#include <string>
#include <vector>

#include "device/kernel32.h"

/// Handles of locked volumes; 0 = none. The unlock pass closes those that have a place; a volume that lost its place to
/// another one stays locked until the next lock pass, or the process's end.
struct Volumes {
  std::array<kernel32::Handle, 31> hVolumes{};
  std::vector<kernel32::Handle> replaced{};
};

inline Volumes volumes;

/// "LOCK": opens, locks and dismounts every volume on drive `drive`, so that no file system caches or rewrites what is
/// written below it. Any other text: unlocks and closes what the lock pass kept. Failures are ignored, a volume that
/// cannot be opened ends the lock pass.
void Lock_Unlock_All_Volumes(int drive, const std::string& mode);

/// Takes the file system off the volume or disk of `handle`. False when the system refused.
bool MY_DISMOUNT_VOLUME(kernel32::Handle handle);

bool MY_UNLOCK_VOLUME(kernel32::Handle handle);
