#include "device/storage_query.h"

#include <algorithm>
#include <string_view>

#include "platform/bytes.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kQueryProperty = 0x2D1400;   // IOCTL_STORAGE_QUERY_PROPERTY
constexpr std::uint32_t kPredictFailure = 0x2D1100;  // IOCTL_STORAGE_PREDICT_FAILURE
constexpr std::uint32_t kGetGeometryEx = 0x700A0;    // IOCTL_DISK_GET_DRIVE_GEOMETRY_EX

// STORAGE_PROPERTY_ID.
constexpr std::uint32_t kDeviceProperty = 0;
constexpr std::uint32_t kAccessAlignment = 6;
constexpr std::uint32_t kAdapterProtocolSpecific = 49;
constexpr std::uint32_t kDeviceProtocolSpecific = 50;
constexpr std::uint32_t kDeviceTemperature = 52;

constexpr std::size_t kQueryBytes = 12;        // STORAGE_PROPERTY_QUERY
constexpr std::size_t kReplyHeader = 8;        // Version and Size, with which every reply begins
constexpr std::size_t kAlignmentBytes = 28;    // STORAGE_ACCESS_ALIGNMENT_DESCRIPTOR
constexpr std::size_t kDescriptorBytes = 36;   // STORAGE_DEVICE_DESCRIPTOR before its texts
constexpr std::size_t kPredictionBytes = 516;  // STORAGE_PREDICT_FAILURE
constexpr std::size_t kProtocolBytes = 40;     // STORAGE_PROTOCOL_SPECIFIC_DATA
constexpr std::size_t kProtocolHeader = kReplyHeader + kProtocolBytes;
constexpr std::size_t kControllerBytes = 4096;
constexpr std::size_t kHealthBytes = 512;

constexpr std::uint32_t kProtocolNvme = 3;  // STORAGE_PROTOCOL_TYPE
constexpr std::uint32_t kNvmeIdentify = 1;  // STORAGE_PROTOCOL_NVME_DATA_TYPE
constexpr std::uint32_t kNvmeLogPage = 2;

StorageReply ask_property(const Sender& send, std::uint32_t property, std::size_t room) {
  std::array<std::uint8_t, kQueryBytes> query{};
  bytes::put_le(query, 0, 4, property);
  return send(kQueryProperty, query, room);
}

/// A page of an NVMe drive. The buffer is question and answer in one, and the page stands behind both.
StorageReply ask_nvme(const Sender& send, std::uint32_t property, std::uint32_t type, std::uint32_t value,
                      std::size_t page_bytes) {
  std::vector<std::uint8_t> request(kProtocolHeader + page_bytes);
  bytes::put_le(request, 0, 4, property);
  bytes::put_le(request, 8, 4, kProtocolNvme);
  bytes::put_le(request, 12, 4, type);
  bytes::put_le(request, 16, 4, value);
  bytes::put_le(request, 24, 4, kProtocolBytes);
  bytes::put_le(request, 28, 4, page_bytes);
  StorageReply reply = send(kQueryProperty, request, request.size());
  if (reply.code != 0) return reply;
  const Bytes data = reply.data;
  const bool whole = data.size() == request.size() && bytes::le32(data, 0) == kProtocolHeader &&
                     bytes::le32(data, 4) == kProtocolHeader && bytes::le32(data, 24) == kProtocolBytes &&
                     bytes::le32(data, 28) >= page_bytes;
  if (!whole) return {.code = kMalformed, .data = {}};
  reply.data.erase(reply.data.begin(), reply.data.begin() + kProtocolHeader);
  return reply;
}

/// The text that begins `offset` bytes into the reply; empty where it does not end there.
std::string text_at(Bytes reply, std::uint32_t offset) {
  if (offset < kDescriptorBytes || offset >= reply.size()) return {};
  const Bytes rest = reply.subspan(offset);
  const auto end = std::find(rest.begin(), rest.end(), std::uint8_t{0});
  return end == rest.end() ? std::string() : std::string(rest.begin(), end);
}

kernel32::Handle open_drive(int drive, std::uint32_t access) {
  const std::string name = "\\\\.\\PhysicalDrive" + std::to_string(drive);
  return kernel32::CreateFileA(name.c_str(), access, platform::kShareRead | platform::kShareWrite,
                               platform::kOpenExisting, 0);
}

std::string text_of(Bytes page, std::size_t at, std::size_t size) {
  const Bytes part = page.subspan(at, size);
  return {part.begin(), part.end()};
}

}  // namespace

Sender through(kernel32::Handle drive) {
  return [drive](std::uint32_t code, Bytes request, std::size_t room) {
    StorageReply reply{.data = std::vector<std::uint8_t>(room)};
    std::uint32_t returned = 0;
    const bool done = kernel32::DeviceIoControl(drive, code, request.data(), static_cast<std::uint32_t>(request.size()),
                                                reply.data.data(), static_cast<std::uint32_t>(room), &returned);
    // A driver that fails without a code has malformed its answer all the same.
    if (!done) return StorageReply{.code = std::max(kernel32::GetLastError(), 1U), .data = {}};
    reply.data.resize(std::min<std::size_t>(returned, room));
    return reply;
  };
}

std::string bus_name(StorageBus bus) {
  switch (bus) {
    case StorageBus::scsi:
      return "SCSI";
    case StorageBus::atapi:
      return "ATAPI";
    case StorageBus::ata:
      return "ATA";
    case StorageBus::firewire:
      return "IEEE 1394";
    case StorageBus::fibre:
      return "Fibre Channel";
    case StorageBus::usb:
      return "USB";
    case StorageBus::raid:
      return "RAID";
    case StorageBus::iscsi:
      return "iSCSI";
    case StorageBus::sas:
      return "SAS";
    case StorageBus::sata:
      return "SATA";
    case StorageBus::sd:
      return "SD";
    case StorageBus::mmc:
      return "MMC";
    case StorageBus::virtual_disk:
      return "virtual";
    case StorageBus::file_backed:
      return "file-backed virtual";
    case StorageBus::spaces:
      return "Storage Spaces";
    case StorageBus::nvme:
      return "NVMe";
    case StorageBus::scm:
      return "SCM";
    case StorageBus::ufs:
      return "UFS";
    case StorageBus::unknown:
      break;
  }
  return "unknown";
}

std::optional<DeviceDescriptor> decode_device_descriptor(Bytes reply) {
  if (reply.size() < kDescriptorBytes) return std::nullopt;
  // Drivers may return less than they say, and fill less than they return.
  const Bytes told = reply.first(std::min<std::size_t>(reply.size(), bytes::le32(reply, 4)));
  if (told.size() < kDescriptorBytes) return std::nullopt;
  return DeviceDescriptor{.bus = static_cast<StorageBus>(bytes::le32(told, 28)),
                          .vendor = text_at(told, bytes::le32(told, 12)),
                          .product = text_at(told, bytes::le32(told, 16)),
                          .revision = text_at(told, bytes::le32(told, 20)),
                          .serial = text_at(told, bytes::le32(told, 24))};
}

bool is_sector_size(std::int64_t bytes) {
  constexpr std::int64_t kLargest = 65536;
  return bytes >= SectorSize && bytes <= kLargest && (bytes & (bytes - 1)) == 0;
}

std::optional<SectorSizes> decode_sector_sizes(Bytes reply) {
  if (reply.size() < kAlignmentBytes) return std::nullopt;
  SectorSizes sizes{
      .logical = bytes::le32(reply, 16), .physical = bytes::le32(reply, 20), .offset = bytes::le32(reply, 24)};
  if (!is_sector_size(sizes.logical)) return std::nullopt;
  const bool larger = is_sector_size(sizes.physical) && sizes.physical >= sizes.logical;
  if (!larger) sizes.physical = sizes.logical;
  sizes.offset %= sizes.physical;
  return sizes;
}

std::optional<NvmeController> decode_nvme_controller(Bytes page) {
  constexpr std::size_t kNamespaces = 516;  // NN
  if (page.size() < kControllerBytes) return std::nullopt;
  if (bytes::le16(page, 0) == 0 || bytes::le32(page, kNamespaces) == 0) return std::nullopt;
  return NvmeController{.model = text_of(page, 24, 40),
                        .serial = text_of(page, 4, 20),
                        .firmware = text_of(page, 64, 8),
                        .warning_kelvin = bytes::le16(page, 266),
                        .critical_kelvin = bytes::le16(page, 268)};
}

std::optional<int> decode_temperature(Bytes reply) {
  constexpr std::size_t kFirst = 24;       // STORAGE_TEMPERATURE_DATA_DESCRIPTOR before its entries
  constexpr std::size_t kEntryBytes = 16;  // STORAGE_TEMPERATURE_INFO
  constexpr std::uint16_t kNotReported = 0x8000;
  if (reply.size() < kFirst) return std::nullopt;
  const std::size_t entries = std::min<std::size_t>(bytes::le16(reply, 12), (reply.size() - kFirst) / kEntryBytes);
  for (std::size_t i = 0; i < entries; ++i) {
    const std::uint16_t raw = bytes::le16(reply, kFirst + i * kEntryBytes + 2);
    if (raw != kNotReported) return static_cast<std::int16_t>(raw);
  }
  return std::nullopt;
}

kernel32::Handle open_to_ask(int drive) {
  const kernel32::Handle handle = open_drive(drive, platform::kGenericRead | platform::kGenericWrite);
  const bool denied = handle == kernel32::kInvalidHandle && kernel32::GetLastError() == platform::kAccessDenied;
  return denied ? open_for_properties(drive) : handle;
}

kernel32::Handle open_for_properties(int drive) {
  constexpr std::uint32_t kNoAccess = 0;
  return open_drive(drive, kNoAccess);
}

StorageReply ask_device_descriptor(const Sender& send) {
  constexpr std::size_t kRoom = 1024;
  StorageReply reply = ask_property(send, kDeviceProperty, kRoom);
  if (reply.code == 0 && !decode_device_descriptor(reply.data)) return {.code = kMalformed, .data = {}};
  return reply;
}

StorageReply ask_sector_sizes(const Sender& send) {
  return ask_property(send, kAccessAlignment, kAlignmentBytes);
}

StorageReply ask_nvme_controller(const Sender& send) {
  constexpr std::uint32_t kController = 1;  // CNS
  return ask_nvme(send, kAdapterProtocolSpecific, kNvmeIdentify, kController, kControllerBytes);
}

StorageReply ask_nvme_health(const Sender& send) {
  constexpr std::uint32_t kHealthLog = 2;
  return ask_nvme(send, kDeviceProtocolSpecific, kNvmeLogPage, kHealthLog, kHealthBytes);
}

StorageReply ask_temperature(const Sender& send) {
  constexpr std::size_t kRoom = 512;
  return ask_property(send, kDeviceTemperature, kRoom);
}

StorageReply ask_predict_failure(const Sender& send) {
  StorageReply reply = send(kPredictFailure, {}, kPredictionBytes);
  if (reply.code == 0 && reply.data.size() < kPredictionBytes) return {.code = kMalformed, .data = {}};
  return reply;
}

std::int64_t ask_size(const Sender& send) {
  constexpr std::size_t kRoom = 256;
  constexpr std::size_t kSizeAt = 24;  // behind DISK_GEOMETRY
  const StorageReply reply = send(kGetGeometryEx, {}, kRoom);
  if (reply.data.size() < kSizeAt + 8) return 0;
  return std::max<std::int64_t>(static_cast<std::int64_t>(bytes::le64(reply.data, kSizeAt)), 0);
}

std::string clean_id(const std::string& text) {
  const auto is_shown = [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= 33 && code < 128;
  };
  const auto first = std::find_if(text.begin(), text.end(), is_shown);
  const auto end = std::find_if(text.rbegin(), text.rend(), is_shown).base();
  if (first >= end) return {};
  std::string clean(first, end);
  std::replace_if(
      clean.begin(), clean.end(), [&](char c) { return !is_shown(c); }, ' ');
  return clean;
}

std::string model_of(const DeviceDescriptor& descriptor) {
  const std::string vendor = clean_id(descriptor.vendor);
  std::string product = clean_id(descriptor.product);
  if (vendor.empty() || vendor == "ATA" || vendor == "NVMe") return product;
  return clean_id(vendor + " " + product);
}
