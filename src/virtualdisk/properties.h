#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "virtualdisk/disk.h"

/// What a disk answers to the requests that drives on every bus take. Results are those of control.h.
namespace virtualdisk {

std::uint32_t query_property(VirtualDisk& disk, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                             std::uint32_t* returned);

std::uint32_t predict_failure(const VirtualDisk& disk, std::span<std::uint8_t> out, std::uint32_t* returned);

/// SCSI pass-through, on the buses that have it.
std::uint32_t pass_through(VirtualDisk& disk, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                           std::uint32_t* returned);

/// Whether the drive says of itself that it fails: its file says so, or a value that tells of failure has come down to
/// its threshold.
bool says_failing(const VirtualDisk& disk);

/// Maker and product as SCSI drives name themselves: the model's first word, if it is one of at most 8 characters, and
/// 16 characters of the rest.
struct ScsiName {
  std::string vendor;   // 8 characters
  std::string product;  // 16
};
ScsiName scsi_name(const std::string& model);

}  // namespace virtualdisk
