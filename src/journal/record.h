#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What stands in an undo journal: a header of 4096 bytes, then the former contents of one place. Numbers are
/// little-endian, texts end at their first zero byte:
///
///   0     16  "SECTORIX JOURNAL"
///   16    4   version, 1
///   20    4   state (RecordState)
///   24    8   first LBA
///   32    8   sectors of 512 bytes
///   40    8   the disk's sectors
///   48    4   bytes of the pattern, 0 to 16
///   52    16  the pattern
///   256   256 model
///   512   256 serial number
///   768   256 firmware revision
///   1024  2048 file of a virtual disk
///   4088  4   CRC-32C of the 4088 bytes before
///   4092  4   CRC-32C of the former contents, then of the first 4088 bytes

inline constexpr std::size_t kHeaderBytes = 4096;

enum class RecordState : std::uint32_t {
  empty = 0,    // no place was written to yet
  pending = 1,  // the place may hold the test's pattern
  done = 2      // the former contents were given back and read again
};

/// The disk that a record is about.
struct DiskIdentity {
  std::string model;
  std::string serial;
  std::string firmware;
  std::int64_t sectors = 0;
  std::string file;  // of a virtual disk
};

struct Record {
  RecordState state = RecordState::empty;
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
  std::vector<std::uint8_t>
      pattern;  // what the test writes over and over; empty where it writes the contents themselves
  DiskIdentity disk;
};

using Header = std::array<std::uint8_t, kHeaderBytes>;

/// True when every text of the record has room in a header.
bool fits(const Record& record);

/// The header of `record`, which fits, over contents whose CRC-32C is `contents_sum` (0 for none).
Header encode(const Record& record, std::uint32_t contents_sum);

/// Takes a header apart. Nothing for one that is cut short, that is not ours, whose own sum is wrong, or that holds
/// what no record can.
std::optional<Record> decode(std::span<const std::uint8_t> header);

/// True when the second sum of `header`, of a whole journal, is that of `contents`.
bool contents_hold(std::span<const std::uint8_t> header, std::span<const std::uint8_t> contents);

/// What `former` looks like once the record's pattern was written over it.
std::vector<std::uint8_t> overwritten(const Record& record, std::span<const std::uint8_t> former);
