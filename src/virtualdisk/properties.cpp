#include "virtualdisk/properties.h"

#include <algorithm>

#include "platform/bytes.h"
#include "virtualdisk/control.h"
#include "virtualdisk/identify.h"

namespace virtualdisk {
namespace {

using In = std::span<const std::uint8_t>;
using Out = std::span<std::uint8_t>;

// Windows SDK, winioctl.h and ntddstor.h: STORAGE_PROPERTY_ID, STORAGE_QUERY_TYPE, STORAGE_BUS_TYPE.
constexpr std::uint32_t kDevice = 0;
constexpr std::uint32_t kAccessAlignment = 6;
constexpr std::uint32_t kAdapterProtocol = 49;
constexpr std::uint32_t kDeviceProtocol = 50;
constexpr std::uint32_t kTemperature = 52;
constexpr std::size_t kQueryBytes = 12;
constexpr std::size_t kHeaderBytes = 8;

std::uint32_t bus_type(Bus bus) {
  switch (bus) {
    case Bus::ata:
      return 11;
    case Bus::nvme:
      return 17;
    case Bus::usb:
    case Bus::usb_sat:
      return 7;
    case Bus::sas:
      return 10;
    case Bus::raid:
    case Bus::nvme_hidden:
      return 8;
    case Bus::scsi:
    case Bus::miniport:
    case Bus::none:
      break;
  }
  return 1;
}

/// Gives as much of `reply` as `out` has room for, at least its header.
std::uint32_t give(const std::vector<std::uint8_t>& reply, Out out, std::uint32_t* returned) {
  if (out.size() < kHeaderBytes) return kInsufficientBuffer;
  const std::size_t given = out.size() < reply.size() ? kHeaderBytes : reply.size();
  std::copy_n(reply.begin(), given, out.begin());
  *returned = static_cast<std::uint32_t>(given);
  return 0;
}

void put_string(std::vector<std::uint8_t>* reply, std::size_t offset_at, const std::string& text) {
  if (text.empty()) return;
  bytes::put_le(*reply, offset_at, 4, reply->size());
  reply->insert(reply->end(), text.begin(), text.end());
  reply->push_back(0);
}

/// STORAGE_DEVICE_DESCRIPTOR with its texts behind it.
std::vector<std::uint8_t> device_descriptor(const VirtualDisk& disk) {
  constexpr std::size_t kFixed = 36;
  constexpr std::uint64_t kVersion = 40;
  const DiskFile& file = disk.file;
  ScsiName name = scsi_name(file.model);
  std::string serial = file.serial;
  if (file.bus == Bus::ata) {
    // As the drive itself has it; a model that it lacks is the disk file's.
    const Page identify = identity_of(disk);
    const std::string model = identify_text(identify, 27, 20);
    if (!model.empty()) name = {.vendor = {}, .product = model};
    serial = identify_text(identify, 10, 10);
  }
  if (file.bus == Bus::nvme || file.bus == Bus::nvme_hidden) {
    name = {.vendor = "NVMe", .product = file.model};
    serial = "0025_3800_0000_0001.";  // the EUI-64, which is not the serial number
  }
  std::vector<std::uint8_t> reply(kFixed);
  bytes::put_le(reply, 0, 4, kVersion);
  reply[11] = 1;  // commands are queued
  put_string(&reply, 12, name.vendor);
  put_string(&reply, 16, name.product);
  put_string(&reply, 20, file.firmware);
  put_string(&reply, 24, file.serial_property.value_or(serial));
  bytes::put_le(reply, 28, 4, bus_type(file.bus));
  bytes::put_le(reply, 4, 4, reply.size());
  return reply;
}

/// STORAGE_ACCESS_ALIGNMENT_DESCRIPTOR; a bridge without SAT knows none.
std::uint32_t access_alignment(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kBytes = 28;
  if (disk.file.bus == Bus::usb) return kInvalidFunction;
  const std::int64_t drives_own = disk.identify ? physical_bytes(*disk.identify) : disk.file.logical;
  std::vector<std::uint8_t> reply(kBytes);
  bytes::put_le(reply, 0, 4, kBytes);
  bytes::put_le(reply, 4, 4, kBytes);
  bytes::put_le(reply, 16, 4, static_cast<std::uint64_t>(disk.file.logical));
  bytes::put_le(reply, 20, 4, static_cast<std::uint64_t>(disk.file.physical.value_or(drives_own)));
  return give(reply, out, returned);
}

/// STORAGE_TEMPERATURE_DATA_DESCRIPTOR with one entry. A drive that reports none has none.
std::uint32_t temperature(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kBytes = 40;
  constexpr std::uint8_t kTemperatureAttribute = 194;
  const bool ata = disk.file.bus == Bus::ata;
  const int celsius = ata ? low_raw_byte(disk.smart.attributes, kTemperatureAttribute) : disk.health.celsius();
  if (celsius == 0 || (!ata && disk.file.bus != Bus::nvme)) return kInvalidFunction;
  std::vector<std::uint8_t> reply(kBytes);
  bytes::put_le(reply, 0, 4, kBytes);
  bytes::put_le(reply, 4, 4, kBytes);
  bytes::put_le(reply, 12, 2, 1);
  bytes::put_le(reply, 24 + 2, 2, static_cast<std::uint64_t>(celsius));
  return give(reply, out, returned);
}

/// STORAGE_PROTOCOL_SPECIFIC_DATA behind the property's number: what it asks for.
struct ProtocolQuery {
  std::uint32_t protocol = 0;
  std::uint32_t type = 0;
  std::uint32_t value = 0;
  std::uint32_t offset = 0;  // of the page, from the structure's start
  std::uint32_t length = 0;
};

constexpr std::size_t kProtocolAt = 8;
constexpr std::size_t kProtocolBytes = 40;
constexpr std::size_t kProtocolReply = kProtocolAt + kProtocolBytes;

ProtocolQuery protocol_query(In in) {
  return {.protocol = bytes::le32(in, kProtocolAt),
          .type = bytes::le32(in, kProtocolAt + 4),
          .value = bytes::le32(in, kProtocolAt + 8),
          .offset = bytes::le32(in, kProtocolAt + 16),
          .length = bytes::le32(in, kProtocolAt + 20)};
}

In log_page(VirtualDisk& disk) {
  Health& health = disk.health;
  if (health.asked) grow(health, Event::snapshot);
  const bool later = health.asked && health.later;
  health.asked = true;
  return later ? In(*health.later) : In(health.log);
}

std::uint32_t query_protocol(VirtualDisk& disk, std::uint32_t property, In in, Out out, std::uint32_t* returned) {
  constexpr std::uint32_t kNvme = 3;
  constexpr std::uint32_t kIdentify = 1;
  constexpr std::uint32_t kLog = 2;
  constexpr std::uint32_t kHealthLog = 2;
  if (disk.file.bus != Bus::nvme) return kInvalidFunction;
  if (in.size() < kProtocolReply) return kInvalidParameter;
  const ProtocolQuery query = protocol_query(in);
  if (query.protocol != kNvme || query.offset < kProtocolBytes) return kInvalidParameter;
  const bool controller = property == kAdapterProtocol && query.type == kIdentify && query.value == 1;
  const bool health = query.type == kLog && query.value == kHealthLog;
  if (!controller && !health) return kIoDevice;
  const std::size_t whole = controller ? kControllerBytes : disk.health.log.size();
  const std::size_t at = kProtocolAt + query.offset;
  if (query.length < whole || at + query.length > in.size() || at + query.length > out.size()) return kInvalidParameter;
  std::vector<std::uint8_t> header(in.begin() + kProtocolAt, in.begin() + kProtocolReply);
  const In page = controller ? In(disk.health.controller) : log_page(disk);
  std::fill(out.begin(), out.end(), std::uint8_t{0});
  bytes::put_le(out, 0, 4, kProtocolReply);
  bytes::put_le(out, 4, 4, kProtocolReply);
  std::copy(header.begin(), header.end(), out.begin() + kProtocolAt);
  std::copy(page.begin(), page.end(), out.begin() + static_cast<std::ptrdiff_t>(at));
  *returned = static_cast<std::uint32_t>(at + query.length);
  return 0;
}

}  // namespace

ScsiName scsi_name(const std::string& model) {
  constexpr std::size_t kVendor = 8;
  constexpr std::size_t kProduct = 16;
  const std::size_t blank = model.find(' ');
  ScsiName name;
  if (blank != std::string::npos && blank <= kVendor) name.vendor = model.substr(0, blank);
  name.product = name.vendor.empty() ? model : model.substr(blank + 1);
  name.vendor.resize(kVendor, ' ');
  name.product.resize(kProduct, ' ');
  return name;
}

bool says_failing(const VirtualDisk& disk) {
  if (disk.health.value(ScsiValue::failing) != 0) return true;
  const bool has_attributes = disk.file.bus == Bus::ata || disk.file.bus == Bus::usb_sat;
  return has_attributes && reached_threshold(disk.smart);
}

std::uint32_t query_property(VirtualDisk& disk, In in, Out out, std::uint32_t* returned) {
  if (disk.file.bus == Bus::none) return kInvalidFunction;
  if (in.size() < kQueryBytes) return kInvalidParameter;
  constexpr std::uint32_t kStandard = 0;
  if (bytes::le32(in, 4) != kStandard) return kInvalidFunction;
  const std::uint32_t property = bytes::le32(in, 0);
  switch (property) {
    case kDevice:
      return give(device_descriptor(disk), out, returned);
    case kAccessAlignment:
      return access_alignment(disk, out, returned);
    case kAdapterProtocol:
    case kDeviceProtocol:
      return query_protocol(disk, property, in, out, returned);
    case kTemperature:
      return temperature(disk, out, returned);
    default:
      return kInvalidFunction;
  }
}

std::uint32_t predict_failure(const VirtualDisk& disk, Out out, std::uint32_t* returned) {
  constexpr std::size_t kBytes = 516;  // STORAGE_PREDICT_FAILURE
  const bool ata = disk.file.bus == Bus::ata;
  if ((!ata && disk.file.bus != Bus::sas) || (ata && disk.file.smart_off)) return kInvalidFunction;
  if (ata && disk.file.smart_disabled) return kIoDevice;
  if (out.size() < kBytes) return kInsufficientBuffer;
  std::fill_n(out.begin(), kBytes, std::uint8_t{0});
  *returned = kBytes;
  bytes::put_le(out, 0, 4, says_failing(disk) ? 1 : 0);
  if (ata) std::copy(disk.smart.attributes.begin(), disk.smart.attributes.end(), out.begin() + 4);
  return 0;
}

}  // namespace virtualdisk
