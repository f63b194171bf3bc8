#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "device/kernel32.h"
#include "platform/units.h"

/// The most logical sectors that a disk of any sector size is taken to have: bytes and sectors of 512 bytes stay
/// within 64 bits.
inline constexpr std::int64_t kMostLogical = std::int64_t{1} << 46;

/// A disk as the decoders of partition tables see it: they count in its logical sectors, and give back sectors of 512
/// bytes.
struct DiskReader {
  std::int64_t logical = SectorSize;  // bytes of a logical sector
  std::int64_t sectors = 0;           // logical ones; 0 where the size is not known

  /// Fills `to`, whole logical sectors, from logical sector `lba` on. Gives a system error code, 0 for success.
  std::function<std::uint32_t(std::int64_t lba, std::span<std::uint8_t> to)> read;

  std::int64_t held = kMostLogical;  // logical sectors that can be read, from 0 on: fewer where this is a buffer

  std::int64_t per_logical() const { return logical / SectorSize; }

  /// True for a logical sector that the disk has; where its size is not known, for one that any disk could have.
  bool has(std::int64_t lba) const;
};

/// A number of logical sectors as a table gives it; what no disk can have becomes kMostLogical.
std::int64_t logical_sectors(std::uint64_t number);

/// The disk of which `bytes`, which must outlive the reader, hold the start. Logical sectors have `logical` bytes.
DiskReader reader_of_buffer(std::span<const std::uint8_t> bytes, std::int64_t logical);

/// Drive `drive` opened for reading alone, as long as this lives.
class ReadOnlyDrive {
 public:
  explicit ReadOnlyDrive(int drive);
  ~ReadOnlyDrive();
  ReadOnlyDrive(const ReadOnlyDrive&) = delete;
  ReadOnlyDrive& operator=(const ReadOnlyDrive&) = delete;

  /// Why it could not be opened; 0 when it was.
  std::uint32_t code() const { return code_; }

  /// The open drive, whose logical sectors have `logical` bytes. Its size is asked for, and is not known to a drive
  /// that does not answer.
  DiskReader reader(std::int64_t logical) const;

 private:
  kernel32::Handle handle_ = kernel32::kInvalidHandle;
  std::uint32_t code_ = 0;
};

/// Fills `to` from byte `offset` of an open drive or volume. Gives a system error code, 0 for success; fewer bytes than
/// asked fail with 38.
std::uint32_t read_bytes(kernel32::Handle handle, std::int64_t offset, std::span<std::uint8_t> to);
