#include "virtualdisk/control.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/bytes.h"
#include "platform/units.h"
#include "virtualdisk/identify.h"
#include "virtualdisk/properties.h"
#include "virtualdisk/volume_control.h"

namespace virtualdisk {
namespace {

using In = std::span<const std::uint8_t>;
using Out = std::span<std::uint8_t>;

// Control codes: Windows SDK, winioctl.h and ntddscsi.h.
constexpr std::uint32_t kGetVersion = 0x74080;         // SMART_GET_VERSION
constexpr std::uint32_t kSendCommand = 0x7C084;        // SMART_SEND_DRIVE_COMMAND
constexpr std::uint32_t kReceiveData = 0x7C088;        // SMART_RCV_DRIVE_DATA
constexpr std::uint32_t kGetGeometry = 0x70000;        // IOCTL_DISK_GET_DRIVE_GEOMETRY
constexpr std::uint32_t kGetGeometryEx = 0x700A0;      // IOCTL_DISK_GET_DRIVE_GEOMETRY_EX
constexpr std::uint32_t kQueryProperty = 0x2D1400;     // IOCTL_STORAGE_QUERY_PROPERTY
constexpr std::uint32_t kPredictFailure = 0x2D1100;    // IOCTL_STORAGE_PREDICT_FAILURE
constexpr std::uint32_t kGetLength = 0x7405C;          // IOCTL_DISK_GET_LENGTH_INFO
constexpr std::uint32_t kMiniport = 0x4D008;           // IOCTL_SCSI_MINIPORT
constexpr std::uint32_t kMiniportIdentify = 0x1B0501;  // IOCTL_SCSI_MINIPORT_IDENTIFY
constexpr std::uint32_t kPassThrough = 0x4D004;        // IOCTL_SCSI_PASS_THROUGH
constexpr std::uint32_t kLockVolume = 0x90018;         // FSCTL_LOCK_VOLUME
constexpr std::uint32_t kUnlockVolume = 0x9001C;       // FSCTL_UNLOCK_VOLUME
constexpr std::uint32_t kDismountVolume = 0x90020;     // FSCTL_DISMOUNT_VOLUME
constexpr std::uint32_t kVolumeExtents = 0x560000;     // IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS
constexpr std::uint32_t kVolumeBitmap = 0x9006F;       // FSCTL_GET_VOLUME_BITMAP
constexpr std::uint32_t kLookupStream = 0x901FC;       // FSCTL_LOOKUP_STREAM_FROM_CLUSTER

// SENDCMDINPARAMS and SENDCMDOUTPARAMS without their first data byte.
constexpr std::size_t kCommandBytes = 32;
constexpr std::size_t kStatusBytes = 16;
constexpr std::size_t kDataReplyBytes = kStatusBytes + 512;
static_assert(kDataReplyBytes == 528);

// SRB_IO_CONTROL, then a command and room for its reply.
constexpr std::size_t kSrbBytes = 28;
constexpr std::size_t kSrbDataBytes = 548;
constexpr std::size_t kMiniportBytes = kSrbBytes + kSrbDataBytes;
constexpr std::size_t kMiniportReplyData = kSrbBytes + kStatusBytes;
static_assert(kMiniportBytes == 576 && kMiniportReplyData == 44);

/// The part of a command that tells one from the other; the rest of its registers is the same in all.
struct Command {
  std::uint32_t buffer_bytes;
  std::uint8_t features;
  std::uint8_t cylinder_low;
  std::uint8_t cylinder_high;
  std::uint8_t command;
};

// ATA8-ACS: IDENTIFY DEVICE and the SMART feature set.
constexpr Command kIdentify = {512, 0x00, 0x00, 0x00, 0xEC};
constexpr Command kEnable = {0, 0xD8, 0x4F, 0xC2, 0xB0};
constexpr Command kReadAttributes = {512, 0xD0, 0x4F, 0xC2, 0xB0};
constexpr Command kReadThresholds = {512, 0xD1, 0x4F, 0xC2, 0xB0};
constexpr Command kReturnStatus = {0, 0xDA, 0x4F, 0xC2, 0xB0};

/// True when the request's buffer size and registers are those of `command`.
bool is_command(In request, const Command& command) {
  constexpr std::uint8_t kDriveHead = 0xA0;
  const std::array<std::uint8_t, 7> registers = {
      command.features, 1, 1, command.cylinder_low, command.cylinder_high, kDriveHead, command.command};
  return bytes::le(request, 0, 4) == command.buffer_bytes &&
         std::equal(registers.begin(), registers.end(), request.begin() + 4);
}

bool is_for_drive(In request, int drive) {
  constexpr std::size_t kDriveNumber = 12;
  return request[kDriveNumber] == drive;
}

/// Clears `out` up to `bytes` and counts them as returned.
void start_reply(Out out, std::size_t bytes, std::uint32_t* returned) {
  std::fill_n(out.begin(), bytes, std::uint8_t{0});
  *returned = static_cast<std::uint32_t>(bytes);
}

/// A status without an error, then the page.
void put_page(Out out, const Page& page) {
  bytes::put_le(out, 0, 4, page.size());
  std::copy(page.begin(), page.end(), out.begin() + kStatusBytes);
}

/// The device map's byte: the drive's bit, and its ATAPI bit, which drives 4 to 7 have no room for.
std::uint8_t device_map(const VirtualDisk& disk) {
  unsigned map = disk.file.smart_nobit ? 0U : 1U << static_cast<unsigned>(disk.drive);
  if (disk.file.smart_atapi) map |= 1U << static_cast<unsigned>(disk.drive + 4);
  return static_cast<std::uint8_t>(map & 0xFF);
}

std::uint32_t get_version(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kVersionBytes = 24;  // GETVERSIONINPARAMS
  constexpr std::uint32_t kAtaAtapiSmart = 7;
  if (disk.file.smart_off) return kInvalidFunction;
  if (out.size() < kVersionBytes) return kInsufficientBuffer;
  start_reply(out, kVersionBytes, returned);
  out[0] = 1;  // version
  out[1] = 1;  // revision
  out[3] = device_map(disk);
  bytes::put_le(out, 4, 4, kAtaAtapiSmart);
  return 0;
}

/// The drive's registers behind the status (IDEREGS): its two cylinder registers tell.
std::uint32_t return_status(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kReplyBytes = kStatusBytes + 8;
  if (out.size() < kReplyBytes) return kInsufficientBuffer;
  if (!disk.smart.enabled) return kIoDevice;
  const bool failing = says_failing(disk);
  start_reply(out, kReplyBytes, returned);
  bytes::put_le(out, 0, 4, kReplyBytes - kStatusBytes);
  out[kStatusBytes + 3] = failing ? 0xF4 : 0x4F;
  out[kStatusBytes + 4] = failing ? 0x2C : 0xC2;
  out[kStatusBytes + 6] = 0x50;  // ready
  return 0;
}

std::uint32_t send_command(VirtualDisk& disk, In in, Out out, std::uint32_t* returned) {
  if (in.size() < kCommandBytes || !is_for_drive(in, disk.drive)) return kInvalidParameter;
  if (is_command(in, kReturnStatus)) return return_status(disk, out, returned);
  if (!is_command(in, kEnable)) return kInvalidParameter;
  if (out.size() < kStatusBytes) return kInsufficientBuffer;
  if (disk.file.smart_disabled) return kIoDevice;
  disk.smart.enabled = true;
  start_reply(out, kStatusBytes, returned);
  return 0;
}

std::uint32_t receive_data(VirtualDisk& disk, In in, Out out, std::uint32_t* returned) {
  if (in.size() < kCommandBytes || !is_for_drive(in, disk.drive)) return kInvalidParameter;
  const bool attributes = is_command(in, kReadAttributes);
  const bool thresholds = is_command(in, kReadThresholds);
  if (!attributes && !thresholds && !is_command(in, kIdentify)) return kInvalidParameter;
  if (out.size() < kDataReplyBytes) return kInsufficientBuffer;
  if ((attributes || thresholds) && !disk.smart.enabled) return kIoDevice;
  if (attributes && disk.smart.page_asked) grow(disk.smart, Event::snapshot);
  disk.smart.page_asked = disk.smart.page_asked || attributes;
  start_reply(out, kDataReplyBytes, returned);
  put_page(out, attributes ? disk.smart.attributes : thresholds ? disk.smart.thresholds : identity_of(disk));
  return 0;
}

std::uint32_t get_geometry(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kGeometryBytes = 24;  // DISK_GEOMETRY
  constexpr std::uint32_t kFixedMedia = 12;
  constexpr std::int64_t kHeads = 255;
  constexpr std::int64_t kTrackSectors = 63;
  if (disk.file.no_geometry) return kInvalidFunction;
  if (out.size() < kGeometryBytes) return kInsufficientBuffer;
  const Geometry geometry = disk.file.geometry.value_or(
      Geometry{disk.sectors / sectors_per_logical(disk) / (kHeads * kTrackSectors), kHeads, kTrackSectors});
  start_reply(out, kGeometryBytes, returned);
  bytes::put_le(out, 0, 8, static_cast<std::uint64_t>(geometry.cylinders));
  bytes::put_le(out, 8, 4, kFixedMedia);
  bytes::put_le(out, 12, 4, static_cast<std::uint64_t>(geometry.heads));
  bytes::put_le(out, 16, 4, static_cast<std::uint64_t>(geometry.sectors));
  bytes::put_le(out, 20, 4, static_cast<std::uint64_t>(disk.file.logical));
  return 0;
}

std::uint64_t size_in_bytes(const VirtualDisk& disk) {
  // The largest disk of all is one sector longer than a signed length can say.
  const std::int64_t sayable = std::min(disk.sectors, kMaxSectors - 1) * SectorSize;
  return static_cast<std::uint64_t>(disk.file.length.value_or(sayable));
}

std::uint32_t get_length(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kLengthBytes = 8;  // GET_LENGTH_INFORMATION
  if (disk.file.no_length) return kInvalidFunction;
  if (out.size() < kLengthBytes) return kInsufficientBuffer;
  start_reply(out, kLengthBytes, returned);
  bytes::put_le(out, 0, 8, size_in_bytes(disk));
  return 0;
}

/// DISK_GEOMETRY_EX: the geometry, then the size in bytes.
std::uint32_t get_geometry_and_size(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kGeometryBytes = 24;
  constexpr std::size_t kBytes = 40;  // with the first bytes of the partition table's description
  if (out.size() < kBytes) return kInsufficientBuffer;
  start_reply(out, kBytes, returned);
  std::uint32_t ignored = 0;
  const std::uint32_t code = get_geometry(disk, out.first(kGeometryBytes), &ignored);
  if (code != 0) *returned = 0;
  bytes::put_le(out, kGeometryBytes, 8, size_in_bytes(disk));
  return code;
}

}  // namespace

Page identity_of(const VirtualDisk& disk) {
  if (disk.identify) return *disk.identify;
  return identify_page({.model = disk.file.model,
                        .serial = disk.file.serial,
                        .firmware = disk.file.firmware,
                        .sectors = disk.sectors / sectors_per_logical(disk),
                        .smart_enabled = disk.smart.enabled,
                        .logical = disk.file.logical,
                        .physical = disk.file.physical.value_or(disk.file.logical)});
}

std::uint32_t control_drive(VirtualDisk& disk, std::uint32_t code, In in, Out out, std::uint32_t* returned) {
  const bool ata = disk.file.bus == Bus::ata;
  switch (code) {
    case kGetVersion:
      return ata ? get_version(disk, out, returned) : kInvalidFunction;
    case kSendCommand:
      return ata ? send_command(disk, in, out, returned) : kInvalidFunction;
    case kReceiveData:
      return ata ? receive_data(disk, in, out, returned) : kInvalidFunction;
    case kGetGeometry:
      return get_geometry(disk, out, returned);
    case kGetLength:
      return get_length(disk, out, returned);
    case kGetGeometryEx:
      return get_geometry_and_size(disk, out, returned);
    case kQueryProperty:
      return query_property(disk, in, out, returned);
    case kPredictFailure:
      return predict_failure(disk, out, returned);
    case kPassThrough:
      return pass_through(disk, in, out, returned);
    case kLockVolume:
    case kUnlockVolume:
    case kDismountVolume:
      return 0;
    default:
      return kInvalidFunction;
  }
}

std::uint32_t control_port(VirtualDisk& disk, std::uint32_t code, In in, Out out, std::uint32_t* returned) {
  constexpr std::string_view kSignature = "SCSIDISK";
  if (code != kMiniport) return kInvalidFunction;
  const bool whole = in.size() >= kMiniportBytes && bytes::le(in, 0, 4) == kSrbBytes &&
                     std::equal(kSignature.begin(), kSignature.end(), in.begin() + 4) &&
                     bytes::le(in, 16, 4) == kMiniportIdentify && bytes::le(in, 24, 4) == kSrbDataBytes &&
                     is_command(in.subspan(kSrbBytes), kIdentify);
  if (!whole) return kInvalidParameter;
  if (out.size() < kMiniportBytes) return kInsufficientBuffer;
  std::array<std::uint8_t, kSrbBytes> header{};
  std::copy_n(in.begin(), kSrbBytes, header.begin());
  bytes::put_le(header, 20, 4, 0);  // the port driver's return code
  start_reply(out, kMiniportBytes, returned);
  std::copy(header.begin(), header.end(), out.begin());
  put_page(out.subspan(kSrbBytes), identity_of(disk));
  return 0;
}

std::uint32_t control_volume(VirtualDisk& disk, const AskedVolume& asked, std::uint32_t code, In in, Out out,
                             std::uint32_t* returned) {
  const platform::Handle handle = asked.handle;
  platform::Handle& lock = disk.locks[asked.volume];
  switch (code) {
    case kLockVolume:
      if (lock != platform::kInvalidHandle) return kAccessDenied;
      lock = handle;
      return 0;
    case kUnlockVolume:
      if (lock != handle) return kNotLocked;
      lock = platform::kInvalidHandle;
      return 0;
    case kDismountVolume:
      return 0;
    case kVolumeExtents:
      return volume_extents(disk, asked.volume, out, returned);
    case kVolumeBitmap:
      return asked.may_read ? volume_bitmap(disk, asked.volume, in, out, returned) : kInvalidFunction;
    case kLookupStream:
      return asked.may_read ? lookup_streams(disk, asked.volume, in, out, returned) : kInvalidFunction;
    default:
      return kInvalidFunction;
  }
}

}  // namespace virtualdisk
