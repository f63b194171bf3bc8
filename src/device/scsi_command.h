#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "device/kernel32.h"

/// SCSI commands sent through IOCTL_SCSI_PASS_THROUGH (Windows SDK, ntddscsi.h). A command that this program sends
/// reads, or moves no data at all.

/// What a command gave. The request may have succeeded and the command failed: then `status` is not 0.
struct ScsiReply {
  std::uint32_t code = 0;          // the request's system error code, 0 for success
  std::uint8_t status = 0;         // SCSI status: 0 good, 2 check condition
  std::vector<std::uint8_t> data;  // the bytes that came
  std::vector<std::uint8_t> sense;

  bool good() const { return code == 0 && status == 0; }
};

/// Sends the command block `cdb` (at most 16 bytes) with room for `data_bytes`; none sends it without data.
ScsiReply send_scsi(kernel32::Handle drive, std::span<const std::uint8_t> cdb, std::size_t data_bytes);

/// The layout of SCSI_PASS_THROUGH in a 64-bit program, with the sense bytes behind it and the data behind those.
namespace pass_through {

inline constexpr std::uint32_t kRequest = 0x4D004;  // IOCTL_SCSI_PASS_THROUGH
inline constexpr std::size_t kHeaderBytes = 56;
inline constexpr std::uint8_t kIn = 1;
inline constexpr std::uint8_t kNoData = 2;
inline constexpr std::size_t kCdb = 36;
inline constexpr std::size_t kMostCdb = 16;

struct Header {
  std::uint8_t target = 0;
  std::uint8_t cdb_bytes = 0;
  std::uint8_t sense_bytes = 0;
  std::uint8_t direction = kIn;
  std::size_t data_bytes = 0;
  std::uint32_t seconds = 0;  // the longest that it may take
  std::size_t data_at = 0;
};

/// Writes the header for `cdb` into `request`, which is zeros; the sense bytes stand right behind it.
void put_header(const Header& header, std::span<const std::uint8_t> cdb, std::span<std::uint8_t> request);

}  // namespace pass_through
