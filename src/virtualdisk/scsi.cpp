#include <algorithm>
#include <array>

#include "platform/bytes.h"
#include "platform/units.h"
#include "virtualdisk/control.h"
#include "virtualdisk/properties.h"

/// The SCSI commands that a disk answers (SPC-4, SBC-3, SAT-3), each by a good status and data, or by check condition
/// and sense bytes.
namespace virtualdisk {
namespace {

using In = std::span<const std::uint8_t>;
using Out = std::span<std::uint8_t>;
using Data = std::vector<std::uint8_t>;

// SCSI_PASS_THROUGH of 64-bit programs (Windows SDK, ntddscsi.h).
constexpr std::size_t kHeader = 56;
constexpr std::size_t kCdbAt = 36;
constexpr std::size_t kMostCdb = 16;

constexpr std::uint8_t kInquiry = 0x12;
constexpr std::uint8_t kReadCapacity = 0x25;
constexpr std::uint8_t kReadDefects = 0x37;
constexpr std::uint8_t kLogSense = 0x4D;
constexpr std::uint8_t kAtaPassThrough16 = 0x85;

struct Answer {
  std::uint8_t status = 0;
  Data data{};
  Data sense{};
};

Answer check_condition(std::uint8_t key, std::uint8_t asc, std::uint8_t ascq) {
  constexpr std::uint8_t kFixedSense = 0x70;
  constexpr std::uint8_t kMore = 10;
  Data sense(18);
  sense[0] = kFixedSense;
  sense[2] = key;
  sense[7] = kMore;
  sense[12] = asc;
  sense[13] = ascq;
  return {.status = 2, .sense = std::move(sense)};
}

Answer invalid_field() {
  return check_condition(5, 0x24, 0);
}

void put_be(Data* data, std::size_t at, std::size_t size, std::uint64_t value) {
  for (std::size_t i = 0; i < size; ++i)
    (*data)[at + i] = static_cast<std::uint8_t>(value >> (8 * (size - 1 - i)) & 0xFF);
}

void append(Data* data, std::string_view text) {
  data->insert(data->end(), text.begin(), text.end());
}

Answer inquiry(const VirtualDisk& disk) {
  constexpr std::size_t kBytes = 36;
  Data data(8);
  data[2] = 6;  // SPC-4
  data[4] = kBytes - 5;
  const ScsiName name = scsi_name(disk.file.model);
  append(&data, name.vendor);
  append(&data, name.product);
  std::string revision = disk.file.firmware;
  revision.resize(4, ' ');
  append(&data, revision);
  return {.data = std::move(data)};
}

Answer vital_product_data(const VirtualDisk& disk, std::uint8_t page) {
  constexpr std::uint8_t kUnitSerial = 0x80;
  constexpr std::uint8_t kAtaInformation = 0x89;
  if (page == kUnitSerial) {
    Data data = {0, kUnitSerial, 0, static_cast<std::uint8_t>(disk.file.serial.size())};
    append(&data, disk.file.serial);
    return {.data = std::move(data)};
  }
  if (page == kAtaInformation && disk.file.bus == Bus::usb_sat) {
    constexpr std::size_t kBytes = 572;
    constexpr std::size_t kIdentifyAt = 60;
    Data data(kBytes);
    data[1] = kAtaInformation;
    put_be(&data, 2, 2, kBytes - 4);
    data[56] = 0xEC;  // the command that gave the data
    const Page identify = identity_of(disk);
    std::copy(identify.begin(), identify.end(), data.begin() + kIdentifyAt);
    return {.data = std::move(data)};
  }
  return invalid_field();
}

/// A log page's head with one parameter behind it.
Data log_page(std::uint8_t page, std::uint16_t parameter, Data value) {
  Data data(8);
  data[0] = page;
  put_be(&data, 2, 2, 4 + value.size());
  put_be(&data, 4, 2, parameter);
  data[6] = 3;  // binary, not saved
  data[7] = static_cast<std::uint8_t>(value.size());
  data.insert(data.end(), value.begin(), value.end());
  return data;
}

Data eight_bytes(std::uint64_t value) {
  Data data(8);
  put_be(&data, 0, 8, value);
  return data;
}

Answer log_sense(VirtualDisk& disk, std::uint8_t page) {
  constexpr std::uint16_t kUncorrected = 6;
  if (disk.file.bus != Bus::sas && disk.file.bus != Bus::raid) return invalid_field();
  Health& health = disk.health;
  const auto celsius = static_cast<std::uint8_t>(health.celsius());
  switch (page) {
    case 0x02:
      return {.data = log_page(page, kUncorrected, eight_bytes(health.value(ScsiValue::write_uncorrected)))};
    case 0x03:
      return {.data = log_page(page, kUncorrected, eight_bytes(health.value(ScsiValue::read_uncorrected)))};
    case 0x0D:
      return {.data = log_page(page, 0, {0, celsius})};
    case 0x2F: {
      if (health.asked) grow(health, Event::snapshot);
      health.asked = true;
      const auto asc = static_cast<std::uint8_t>(health.value(ScsiValue::asc));
      const auto ascq = static_cast<std::uint8_t>(health.value(ScsiValue::ascq));
      return {.data = log_page(page, 0, {asc, ascq, celsius, 0})};
    }
    default:
      return invalid_field();
  }
}

/// The header of the list of grown defects, 8 bytes each; the list itself is for nobody.
Answer defects(const VirtualDisk& disk) {
  constexpr std::uint64_t kEntry = 8;
  constexpr std::uint64_t kMost = 0xFFFF;
  Data data = {0, 0x0D, 0, 0};
  put_be(&data, 2, 2, std::min(disk.health.value(ScsiValue::grown_defects) * kEntry, kMost));
  return {.data = std::move(data)};
}

Answer read_capacity(const VirtualDisk& disk) {
  constexpr std::int64_t kMostLast = 0xFFFFFFFF;
  Data data(8);
  put_be(&data, 0, 4, static_cast<std::uint64_t>(std::min(disk.sectors / sectors_per_logical(disk) - 1, kMostLast)));
  put_be(&data, 4, 4, static_cast<std::uint64_t>(disk.file.logical));
  return {.data = std::move(data)};
}

/// What a bridge makes of the registers behind SMART RETURN STATUS: a descriptor of sense data.
Answer registers_of_status(const VirtualDisk& disk) {
  const bool failing = says_failing(disk);
  Data sense(22);
  sense[0] = 0x72;
  sense[1] = 1;     // recovered
  sense[3] = 0x1D;  // ATA pass-through information available
  sense[7] = 14;
  sense[8] = 9;
  sense[9] = 12;
  sense[17] = failing ? 0xF4 : 0x4F;
  sense[19] = failing ? 0x2C : 0xC2;
  sense[21] = 0x50;
  return {.status = 2, .sense = std::move(sense)};
}

Answer page_answer(const Page& page) {
  return {.data = Data(page.begin(), page.end())};
}

/// The ATA commands of a translating bridge. One that does not translate hangs at the first.
Answer ata_pass_through(VirtualDisk& disk, In cdb) {
  constexpr std::uint8_t kSmart = 0xB0;
  constexpr std::uint8_t kIdentify = 0xEC;
  if (disk.file.bus != Bus::usb_sat) {
    if (disk.file.bus == Bus::usb) disk.hangs = true;
    return check_condition(5, 0x20, 0);
  }
  const std::uint8_t command = cdb[14];
  if (command == kIdentify) return page_answer(identity_of(disk));
  if (command != kSmart || cdb[10] != 0x4F || cdb[12] != 0xC2) return invalid_field();
  switch (cdb[4]) {
    case 0xD0: {
      if (disk.smart.page_asked) grow(disk.smart, Event::snapshot);
      disk.smart.page_asked = true;
      return page_answer(disk.smart.attributes);
    }
    case 0xD1:
      return page_answer(disk.smart.thresholds);
    case 0xDA:
      return registers_of_status(disk);
    default:
      return check_condition(0x0B, 0, 0);  // aborted
  }
}

Answer answer_to(VirtualDisk& disk, In cdb) {
  constexpr std::uint8_t kVital = 1;
  constexpr std::uint8_t kLogPage = 0x3F;
  // This one answers its size alone.
  if (disk.file.bus == Bus::scsi && cdb[0] != kReadCapacity) return invalid_field();
  switch (cdb[0]) {
    case kInquiry:
      return (cdb[1] & kVital) != 0 ? vital_product_data(disk, cdb[2]) : inquiry(disk);
    case kReadCapacity:
      return read_capacity(disk);
    case kLogSense:
      return log_sense(disk, cdb[2] & kLogPage);
    case kReadDefects:
      return disk.file.bus == Bus::sas ? defects(disk) : invalid_field();
    case kAtaPassThrough16:
      return ata_pass_through(disk, cdb);
    default:
      return check_condition(5, 0x20, 0);
  }
}

/// Where a request wants its answer.
struct Room {
  std::uint32_t data_bytes = 0;
  std::uint64_t data_at = 0;
  std::uint32_t sense_at = 0;
  std::uint8_t sense_bytes = 0;
};

}  // namespace

std::uint32_t pass_through(VirtualDisk& disk, In in, Out out, std::uint32_t* returned) {
  constexpr std::uint32_t kRevisionMismatch = 1306;
  const Bus bus = disk.file.bus;
  const bool takes = bus == Bus::scsi || bus == Bus::usb || bus == Bus::usb_sat || bus == Bus::sas || bus == Bus::raid;
  if (!takes) return kInvalidFunction;
  if (in.size() < kHeader) return kInvalidParameter;
  if (bytes::le16(in, 0) != kHeader) return kRevisionMismatch;
  const Room room = {.data_bytes = bytes::le32(in, 12),
                     .data_at = bytes::le64(in, 24),
                     .sense_at = bytes::le32(in, 32),
                     .sense_bytes = in[7]};
  const std::uint64_t sense_end = std::uint64_t{room.sense_at} + room.sense_bytes;
  const bool fits = in[6] <= kMostCdb && room.sense_at >= kHeader && sense_end <= out.size() &&
                    room.data_at <= out.size() && room.data_bytes <= out.size() - room.data_at &&
                    (room.data_bytes == 0 || room.data_at >= sense_end);
  if (!fits) return kInvalidParameter;
  std::array<std::uint8_t, kHeader> header{};
  std::copy_n(in.begin(), kHeader, header.begin());
  const Answer answer = answer_to(disk, In(header).subspan(kCdbAt, kMostCdb));
  std::fill(out.begin(), out.end(), std::uint8_t{0});
  const std::size_t moved = std::min<std::size_t>(answer.data.size(), room.data_bytes);
  const std::size_t sense = std::min<std::size_t>(answer.sense.size(), room.sense_bytes);
  header[2] = answer.status;
  header[7] = static_cast<std::uint8_t>(sense);
  bytes::put_le(header, 12, 4, moved);
  std::copy(header.begin(), header.end(), out.begin());
  std::copy_n(answer.sense.begin(), sense, out.begin() + room.sense_at);
  std::copy_n(answer.data.begin(), moved, out.begin() + static_cast<std::ptrdiff_t>(room.data_at));
  *returned = static_cast<std::uint32_t>(moved > 0 ? room.data_at + moved : sense_end);
  return 0;
}

}  // namespace virtualdisk
