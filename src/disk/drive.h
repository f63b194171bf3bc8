#pragma once

#include <cstdint>
#include <string>

#include "device/kernel32.h"
#include "device/storage_query.h"
#include "disk/sector_buffer.h"
#include "disk/whole_sectors.h"
#include "platform/units.h"

/// Where the contents of Sec_Buf come from.
struct Source {
  enum class Kind : std::uint8_t { nothing, pattern, sectors };
  Kind kind = Kind::nothing;
  SectorSizes sizes{};   // of the drive; a pattern's sectors have 512 bytes
  int drive = kNoDrive;  // of sectors: the drive, its serial number, the first LBA and how many were read
  std::string serial{};
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
};

/// The selected drive's handle, the sector buffer and what the last transfer did.
struct Disk {
  kernel32::Handle hDrive = kernel32::kInvalidHandle;
  SectorBuffer Sec_Buf;
  std::int64_t Buf_LBA = 0;       // first LBA of the last transfer asked for
  std::int64_t Buf_Secs = 0;      // sectors that the last transfer moved; 0 after a failed read
  bool access_denied = false;     // the system refused to open the drive: there is one, for somebody with more rights
  std::uint32_t Errno = 0;        // system error code of the last transfer
  bool given_up = false;          // the last transfer was a read that the user gave up: nothing is wrong with the disk
  std::uint32_t flush_errno = 0;  // of the flush behind the last write
  Source source;                  // as the last command that filled the buffer left it

  SectorSizes sizes;    // of the selected drive, once it was identified
  SectorBuffer around;  // the whole logical sectors of a transfer that was not made of such
  struct Known {
    std::int64_t lba = 0;
    std::span<const std::uint8_t> bytes;
  };
  Known known;  // what somebody has read around the next writes
};

inline Disk disk;

/// What a transfer that the program itself refuses fails with: ERROR_INVALID_DATA (winerror.h).
inline constexpr std::uint32_t kRefusedTransfer = 13;

/// The most sectors of one transfer: their bytes fit a signed 32-bit number.
inline constexpr std::int64_t kLargestTransfer = 4'194'303;

/// Makes Sec_Buf `bytes` long for a command that begins at `lba`. It shows as holding nothing, and what a view could
/// show of its start is zeros, until a transfer fills it.
void remake_buffer(std::int64_t bytes, std::int64_t lba);

/// Opens drive `n` (0 to 7) for reading and writing in place of the one before; disk.hDrive is invalid on failure,
/// which is told through ShowMessage and in the report. Its sectors count as having 512 bytes until it is identified.
void OpenDrive(int n);

/// Says of drive `n`, which the system refused to open, what is to be done.
std::string access_denied_text(int n);

/// Opens the selected drive.
void GetandOpenDrive();

/// Closes the drive; disk.hDrive is invalid afterwards.
void close_drive();

/// True for a transfer of `count` sectors at `lba` that fits Sec_Buf and what a transfer can be; another makes no
/// system call.
bool may_transfer(std::int64_t lba, std::int64_t count);

/// Reads `count` sectors from `lba` into the start of Sec_Buf with one system call, which reads the whole logical
/// sectors that hold them. False on failure, also when fewer bytes came than asked; disk.Errno has the code (38 where
/// the system gave none), disk.Buf_Secs is 0 then. A transfer larger than Sec_Buf or than kLargestTransfer, or with a
/// negative number, makes no call and fails with 13, or with 6 while no drive is open.
bool ReadAt(std::int64_t lba, std::int64_t count);

/// Writes `count` sectors from the start of Sec_Buf to `lba` and flushes them. Where they begin or end inside a logical
/// sector, that is read before and written back around them; nothing is written when it cannot be. Fails like ReadAt, a
/// short write with 112 where the system gave no code; disk.Buf_Secs changes only on success. A failed flush is no
/// failed write: disk.flush_errno has its code.
bool WriteAt(std::int64_t lba, std::int64_t count);

/// Reads whole logical sectors to `to` and fails as ReadAt does. Nothing else of `disk` changes.
bool read_whole(const Stretch& whole, std::uint8_t* to);
