#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "device/kernel32.h"
#include "platform/units.h"

/// What Windows tells of a drive on every bus: IOCTL_STORAGE_QUERY_PROPERTY and its neighbours (Windows SDK,
/// winioctl.h and ntddstor.h). None of them touches the medium or changes anything.

/// What a request gave: a system error code, 0 for success, and the bytes that came. A reply that is not what the
/// request must give has code kMalformed and no bytes.
struct StorageReply {
  std::uint32_t code = 0;
  std::vector<std::uint8_t> data;
};

inline constexpr std::uint32_t kMalformed = 13;  // winerror.h: ERROR_INVALID_DATA

/// Sends the control request `code` to a drive, with room for `room` bytes of reply.
using Sender = std::function<StorageReply(std::uint32_t code, std::span<const std::uint8_t> request, std::size_t room)>;

/// Sends through an open handle.
Sender through(kernel32::Handle drive);

/// STORAGE_BUS_TYPE.
enum class StorageBus : std::uint32_t {
  unknown = 0,
  scsi = 1,
  atapi = 2,
  ata = 3,
  firewire = 4,
  fibre = 6,
  usb = 7,
  raid = 8,
  iscsi = 9,
  sas = 10,
  sata = 11,
  sd = 12,
  mmc = 13,
  virtual_disk = 14,
  file_backed = 15,
  spaces = 16,
  nvme = 17,
  scm = 18,
  ufs = 19
};

/// The bus in a word or two: "NVMe", "SATA"; "unknown" for a number without a name.
std::string bus_name(StorageBus bus);

/// STORAGE_DEVICE_DESCRIPTOR. Texts as the driver gives them, blanks and all; empty where it has none.
struct DeviceDescriptor {
  StorageBus bus = StorageBus::unknown;
  std::string vendor;
  std::string product;
  std::string revision{};
  std::string serial{};
};

/// Nothing for fewer bytes than the fixed part has. A text that does not end within the reply is taken as absent.
std::optional<DeviceDescriptor> decode_device_descriptor(std::span<const std::uint8_t> reply);

/// Bytes of a drive's sectors: of those that it is addressed by, and of those that its medium has.
struct SectorSizes {
  std::int64_t logical = SectorSize;
  std::int64_t physical = SectorSize;
  std::int64_t offset = 0;  // how far into its physical sector the disk's first byte lies
};

/// True for what a logical sector can have: a power of two from 512 to 65536 bytes.
bool is_sector_size(std::int64_t bytes);

/// STORAGE_ACCESS_ALIGNMENT_DESCRIPTOR. Nothing for sizes that no sector has; a physical sector that is none, or
/// smaller than the logical one, counts as being that.
std::optional<SectorSizes> decode_sector_sizes(std::span<const std::uint8_t> reply);

/// Identify Controller (NVM Express base specification, Identify Controller data structure), 4096 bytes.
struct NvmeController {
  std::string model;
  std::string serial{};
  std::string firmware;
  std::uint16_t warning_kelvin = 0;   // WCTEMP; 0 for none
  std::uint16_t critical_kelvin = 0;  // CCTEMP
};

/// Nothing where the page has no vendor or no namespace: then no controller has answered.
std::optional<NvmeController> decode_nvme_controller(std::span<const std::uint8_t> page);

/// The temperature in degrees Celsius of STORAGE_TEMPERATURE_DATA_DESCRIPTOR's first entry that reports one.
std::optional<int> decode_temperature(std::span<const std::uint8_t> reply);

/// Opens drive `drive` to ask about it: for reading and writing, which pass-through needs, or else with no access at
/// all, which is enough for properties. kInvalidHandle when there is no such drive.
kernel32::Handle open_to_ask(int drive);

/// The same with no access from the start: it keeps nobody from anything.
kernel32::Handle open_for_properties(int drive);

StorageReply ask_device_descriptor(const Sender& send);
StorageReply ask_sector_sizes(const Sender& send);
StorageReply ask_nvme_controller(const Sender& send);
StorageReply ask_nvme_health(const Sender& send);  // log page 02h, 512 bytes
StorageReply ask_temperature(const Sender& send);
StorageReply ask_predict_failure(const Sender& send);  // STORAGE_PREDICT_FAILURE, 516 bytes

/// The disk's size in bytes by its geometry (DISK_GEOMETRY_EX), which needs no access; 0 where it does not answer.
std::int64_t ask_size(const Sender& send);

/// Maker and product of a descriptor as one text, cleaned; a maker that only names the protocol is left out.
std::string model_of(const DeviceDescriptor& descriptor);

/// `text` with characters below 33 and from 128 as blanks, without blanks at its ends.
std::string clean_id(const std::string& text);
