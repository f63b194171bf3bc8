#include "smart/identification.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include "device/drive_command.h"
#include "device/scsi_command.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "platform/bytes.h"
#include "smart/identify_data.h"

namespace {

// Windows SDK: winioctl.h and ntddscsi.h.
constexpr std::uint32_t kGetDriveGeometry = 0x70000;   // IOCTL_DISK_GET_DRIVE_GEOMETRY
constexpr std::uint32_t kGetLengthInfo = 0x7405C;      // IOCTL_DISK_GET_LENGTH_INFO
constexpr std::uint32_t kScsiMiniport = 0x4D008;       // IOCTL_SCSI_MINIPORT
constexpr std::uint32_t kMiniportIdentify = 0x1B0501;  // IOCTL_SCSI_MINIPORT_IDENTIFY

constexpr std::int64_t kMostSectors = std::numeric_limits<std::int64_t>::max() / SectorSize;

std::string megabytes(std::int64_t sectors) {
  return std::to_string(sectors / kSectorsPerMb);
}

kernel32::Handle open_device(const std::string& name) {
  return kernel32::CreateFileA(name.c_str(), platform::kGenericRead | platform::kGenericWrite,
                               platform::kShareRead | platform::kShareWrite, platform::kOpenExisting, 0);
}

void Clean_Id_Strings() {
  identification.Disk_Model = clean_id(identification.Model_No);
  identification.Disk_Serial = clean_id(identification.Serial_No);
  identification.Disk_Firmware = clean_id(identification.Firmware_Rev);
}

void take_identity(const IdentifyData& data) {
  identification.Model_No = data.model;
  identification.Serial_No = data.serial;
  identification.Firmware_Rev = data.firmware;
  identification.Num_Cyls = data.cylinders;
  identification.Num_Heads = data.heads;
  identification.Sectors_Per_Track = data.sectors_per_track;
  if (disk.sizes.logical == SectorSize) disk.sizes = data.sizes;
  identification.Id_Total_Sectors = data.sectors * (data.sizes.logical / SectorSize);
  identification.Drive_Sectors = identification.Id_Total_Sectors;
}

/// A raw string that cannot pass for a line of its own in the report, whatever the drive put into it.
std::string one_line(std::string raw) {
  std::replace_if(
      raw.begin(), raw.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  return raw;
}

/// The product of three counts; 0 where one is not positive or the product is no disk's size.
std::int64_t credible_product(std::int64_t cylinders, std::int64_t tracks, std::int64_t sectors) {
  if (cylinders <= 0 || tracks <= 0 || sectors <= 0 || tracks > kMostSectors / sectors) return 0;
  const std::int64_t per_cylinder = tracks * sectors;
  return cylinders > kMostSectors / per_cylinder ? 0 : cylinders * per_cylinder;
}

/// SCSI_PASS_THROUGH with sense data and data behind it, asking for READ CAPACITY (SBC-3, 5.15).
constexpr std::size_t kPassThroughBytes = 585;
constexpr std::size_t kPassThroughData = 80;
std::array<std::uint8_t, kPassThroughBytes> read_capacity_request() {
  constexpr std::uint8_t kSense = 24;
  constexpr std::uint8_t kData = 192;
  constexpr std::array<std::uint8_t, 5> kReadCapacity10 = {0x25, 8, 0, 0, kData};
  std::array<std::uint8_t, kPassThroughBytes> request{};
  pass_through::put_header({.target = 1,
                            .cdb_bytes = 6,  // though the command has 10 bytes: docs/oddities.md, 19.
                            .sense_bytes = kSense,
                            .data_bytes = kData,
                            .seconds = 2,
                            .data_at = kPassThroughData},
                           kReadCapacity10, request);
  return request;
}

std::int64_t capacity_in(std::span<const std::uint8_t> data) {
  const double blocks = static_cast<double>(bytes::be32(data, 0)) + 1.0;
  const double sectors = blocks * static_cast<double>(bytes::be32(data, 4)) / static_cast<double>(SectorSize);
  return sectors < static_cast<double>(kMostSectors) ? static_cast<std::int64_t>(sectors) : 0;
}

/// SRB_IO_CONTROL (ntddscsi.h) with SENDCMDINPARAMS behind it.
constexpr std::size_t kSrbHeader = 28;
constexpr std::size_t kMiniportBytes = 576;
std::array<std::uint8_t, kMiniportBytes> miniport_request() {
  constexpr std::string_view kSignature = "SCSIDISK";
  std::array<std::uint8_t, kMiniportBytes> request{};
  bytes::put_le(request, 0, 4, kSrbHeader);
  std::copy(kSignature.begin(), kSignature.end(), request.begin() + 4);
  bytes::put_le(request, 12, 4, 2);  // seconds
  bytes::put_le(request, 16, 4, kMiniportIdentify);
  bytes::put_le(request, 24, 4, kMiniportBytes - kSrbHeader);
  put_command({.data_bytes = kPageBytes, .command = kIdentifyDevice}, std::span(request).subspan(kSrbHeader));
  return request;
}

/// Fills in the texts that are still blank. `source` becomes that of the identity if all of them were.
void fill_in_texts(IdentitySource source, const std::string& model, const std::string& serial,
                   const std::string& firmware) {
  Identification& id = identification;
  if (id.Disk_Model.empty() && id.Disk_Serial.empty() && id.Disk_Firmware.empty()) id.source = source;
  if (id.Disk_Model.empty()) id.Model_No = model;
  if (id.Disk_Serial.empty()) id.Serial_No = serial;
  if (id.Disk_Firmware.empty()) id.Firmware_Rev = firmware;
  Clean_Id_Strings();
}

void identify_by_controller(kernel32::Handle drive) {
  const std::optional<NvmeController> told = decode_nvme_controller(ask_nvme_controller(through(drive)).data);
  if (told && !clean_id(told->model).empty())
    fill_in_texts(IdentitySource::nvme_controller, told->model, told->serial, told->firmware);
}

std::string text_in(std::span<const std::uint8_t> data, std::size_t at, std::size_t size) {
  if (at >= data.size()) return {};
  const auto part = data.subspan(at, std::min(size, data.size() - at));
  return {part.begin(), part.end()};
}

/// Standard INQUIRY data (SPC-4, 6.4.2).
void identify_by_inquiry(kernel32::Handle drive) {
  constexpr std::array<std::uint8_t, 6> kInquiry = {0x12, 0, 0, 0, 96, 0};
  const ScsiReply reply = send_scsi(drive, kInquiry, 96);
  if (!reply.good()) return;
  const DeviceDescriptor told{.vendor = text_in(reply.data, 8, 8),
                              .product = text_in(reply.data, 16, 16),
                              .revision = text_in(reply.data, 32, 4),
                              .serial = {}};
  if (!model_of(told).empty()) fill_in_texts(IdentitySource::inquiry, model_of(told), {}, told.revision);
}

/// The unit serial number page (SPC-4, 7.8.15).
void ask_unit_serial(kernel32::Handle drive) {
  constexpr std::array<std::uint8_t, 6> kUnitSerial = {0x12, 1, 0x80, 0, 252, 0};
  const ScsiReply reply = send_scsi(drive, kUnitSerial, 252);
  if (!reply.good() || reply.data.size() < 4 || reply.data[1] != 0x80) return;
  identification.Serial_No = text_in(reply.data, 4, reply.data[3]);
  Clean_Id_Strings();
}

/// True where drives take SCSI commands, or a translation of them.
bool speaks_scsi(StorageBus bus) {
  return bus == StorageBus::scsi || bus == StorageBus::fibre || bus == StorageBus::usb || bus == StorageBus::raid ||
         bus == StorageBus::iscsi || bus == StorageBus::sas;
}

/// Asks for the sizes of the sectors, unless IDENTIFY has told of sectors that the house can count in.
void learn_sector_sizes(kernel32::Handle drive) {
  if (identification.source == IdentitySource::identify && disk.sizes.logical == SectorSize) return;
  if (const auto sizes = decode_sector_sizes(ask_sector_sizes(through(drive)).data)) disk.sizes = *sizes;
}

/// Asks for the bus and, where nobody has told the model yet, for the rest, through the handle `drive`.
void identify_by_driver(kernel32::Handle drive) {
  const std::optional<DeviceDescriptor> told = decode_device_descriptor(ask_device_descriptor(through(drive)).data);
  if (!told) return;
  Identification& id = identification;
  id.bus = told->bus;
  if (!id.Disk_Model.empty()) return;
  if (told->bus == StorageBus::nvme) identify_by_controller(drive);
  if (id.Disk_Model.empty() && !model_of(*told).empty())
    fill_in_texts(IdentitySource::descriptor, model_of(*told), told->serial, told->revision);
  if (!speaks_scsi(told->bus)) return;
  if (id.Disk_Model.empty()) identify_by_inquiry(drive);
  if (id.Disk_Serial.empty()) ask_unit_serial(drive);
}

}  // namespace

const char* source_name(IdentitySource source) {
  switch (source) {
    case IdentitySource::identify:
      return "IDENTIFY DEVICE";
    case IdentitySource::scsi_port:
      return "SCSI port";
    case IdentitySource::nvme_controller:
      return "Identify Controller";
    case IdentitySource::descriptor:
      return "device descriptor";
    case IdentitySource::inquiry:
      return "INQUIRY";
    case IdentitySource::none:
      break;
  }
  return "nobody";
}

bool serial_is_its_own() {
  return identification.source != IdentitySource::scsi_port;
}

bool Check_drv(std::int32_t drive) {
  identification = {};
  disk.sizes = {};
  const std::string number = std::to_string(drive);
  std::int64_t& sectors = identification.Drive_Sectors;
  PrintReport("Check_drv " + number + " was called");
  Get_IDE_params(disk.hDrive, kIdentifyDevice, drive);
  // No blank before this parenthesis: docs/oddities.md, 8.
  PrintReport("IDE disk " + number + " Size=" + std::to_string(sectors) + "(" + megabytes(sectors) + " Mb)");
  const std::int64_t by_geometry = Get_Disk_Geometry_Size();
  PrintReport("IDE disk geometry " + number + " Size=" + std::to_string(by_geometry) + " (" + megabytes(by_geometry) +
              " Mb)");
  sectors = std::max(sectors, by_geometry);
  if (sectors == 0) {
    Get_Scsi_Identify(drive);
    PrintReport("SCSI disk " + number + " Size=" + std::to_string(sectors) + " (" + megabytes(sectors) + " Mb)");
  }
  sectors = std::max(sectors, Get_Capacity_PassThrough(drive));
  if (sectors == 0) return false;
  if (const kernel32::Handle asked = open_to_ask(drive); asked != kernel32::kInvalidHandle) {
    learn_sector_sizes(asked);
    identify_by_driver(asked);
    kernel32::CloseHandle(asked);
  }
  sectors = whole_below(sectors);
  PrintReport("Check_drv " + number + " returned OK.");
  return true;
}

bool Get_IDE_params(kernel32::Handle drive, std::uint8_t command, std::int32_t drive_number) {
  if (drive == kernel32::kInvalidHandle) return false;
  CommandReply reply{};
  const DriveCommand request{
      .data_bytes = kPageBytes, .command = command, .drive_number = static_cast<std::uint8_t>(drive_number)};
  std::uint32_t returned = 0;
  const bool done =
      send_command(drive, kSmartRcvDriveData, request, static_cast<std::uint32_t>(reply.size()), &reply, &returned);
  if (!done || !carries_page(reply, returned)) return false;
  const IdentifyData data = decode_identify(std::span(reply).subspan(kReplyHeader));
  take_identity(data);
  // Not the default's: docs/oddities.md, 20.
  identification.Sectors_Per_Track = data.current_sectors_per_track;
  identification.source = IdentitySource::identify;
  Clean_Id_Strings();
  return true;
}

std::int64_t Get_Disk_Geometry_Size() {
  if (disk.hDrive == kernel32::kInvalidHandle) return 0;
  std::array<std::uint8_t, 24> geometry{};  // DISK_GEOMETRY
  std::uint32_t returned = 0;
  if (!kernel32::DeviceIoControl(disk.hDrive, kGetDriveGeometry, nullptr, 0, geometry.data(), geometry.size(),
                                 &returned)) {
    return 0;
  }
  const std::int64_t logical = bytes::le32(geometry, 20);
  if (is_sector_size(logical) && logical != disk.sizes.logical) disk.sizes = {.logical = logical, .physical = logical};
  const std::int64_t count = credible_product(static_cast<std::int64_t>(bytes::le64(geometry, 0)),
                                              bytes::le32(geometry, 12), bytes::le32(geometry, 16));
  return count > kMostSectors / sectors_per_logical() ? 0 : count * sectors_per_logical();
}

void Get_Scsi_Identify(std::int32_t port) {
  // The port's handle takes the drive's place: docs/oddities.md, 21.
  close_drive();
  disk.hDrive = open_device("\\\\.\\Scsi" + std::to_string(port) + ":");
  if (disk.hDrive == kernel32::kInvalidHandle) {
    ShowMessage("SCSI invalid handle!");
    return;
  }
  PrintReport("Handle for SCSI" + std::to_string(port) + " created");
  std::array<std::uint8_t, kMiniportBytes> buffer = miniport_request();
  std::uint32_t returned = 0;
  const bool done = kernel32::DeviceIoControl(disk.hDrive, kScsiMiniport, buffer.data(), kMiniportBytes, buffer.data(),
                                              kMiniportBytes, &returned);
  const auto reply = std::span(buffer).subspan(kSrbHeader);
  if (!done || !carries_page(reply, returned - std::min<std::uint32_t>(returned, kSrbHeader))) {
    ShowMessage("IOCTL_SCSI_MINIPORT call failed");
    return;
  }
  take_identity(decode_identify(reply.subspan(kReplyHeader)));
  identification.source = IdentitySource::scsi_port;
  const Identification& id = identification;
  PrintReport("IOCTL_SCSI_MINIPORT called OK  " + one_line(id.Model_No) + " " + one_line(id.Firmware_Rev) + " " +
              one_line(id.Serial_No) + " " + std::to_string(id.Num_Cyls) + " " + std::to_string(id.Num_Heads) + " " +
              std::to_string(id.Sectors_Per_Track) + " " + std::to_string(id.Drive_Sectors));
  Clean_Id_Strings();
}

std::int64_t Get_Capacity_PassThrough(std::int32_t drive) {
  const kernel32::Handle handle = open_device("\\\\.\\PhysicalDrive" + std::to_string(drive));
  if (handle == kernel32::kInvalidHandle) return 0;
  std::array<std::uint8_t, kPassThroughBytes> buffer = read_capacity_request();
  std::uint32_t returned = 0;
  kernel32::DeviceIoControl(handle, pass_through::kRequest, buffer.data(), kPassThroughBytes, buffer.data(),
                            kPassThroughBytes, &returned);
  std::int64_t capacity = 0;
  if (returned > 0) capacity = capacity_in(std::span(buffer).subspan(kPassThroughData));
  capacity = std::max(capacity, Get_Length_Info(handle) / SectorSize);
  kernel32::CloseHandle(handle);
  return capacity;
}

std::int64_t Get_Length_Info(kernel32::Handle drive) {
  if (drive == kernel32::kInvalidHandle) return 0;
  std::array<std::uint8_t, 8> length{};  // GET_LENGTH_INFORMATION
  std::uint32_t returned = 0;
  const bool answered =
      kernel32::DeviceIoControl(drive, kGetLengthInfo, nullptr, 0, length.data(), length.size(), &returned);
  return answered ? std::max<std::int64_t>(static_cast<std::int64_t>(bytes::le64(length, 0)), 0) : 0;
}
