#include "smart/snapshot.h"

#include <algorithm>
#include <array>

#include "device/drive_command.h"
#include "disk/drive.h"
#include "form/number_text.h"
#include "form/output.h"
#include "platform/bytes.h"
#include "smart/identification.h"

namespace {

// SMART feature register and the signature in the cylinder registers (ATA8-ACS, SMART commands).
constexpr std::uint8_t kReadValues = 0xD0;
constexpr std::uint8_t kReadThresholds = 0xD1;
constexpr std::uint8_t kEnableOperations = 0xD8;
constexpr std::uint8_t kSignatureLow = 0x4F;
constexpr std::uint8_t kSignatureHigh = 0xC2;

// Entries of the attribute and the threshold page: 30 of 12 bytes, behind the page's revision.
constexpr std::size_t kEntries = 30;
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kFirstEntry = kReplyHeader + 2;
constexpr std::size_t kRawOffset = 5;
constexpr std::size_t kRawBytes = 6;

DriveCommand smart_command(std::uint8_t features, std::uint32_t data_bytes, std::int32_t drive_number) {
  return {.data_bytes = data_bytes,
          .features = features,
          .cylinder_low = kSignatureLow,
          .cylinder_high = kSignatureHigh,
          .command = kSmartCommand,
          .drive_number = static_cast<std::uint8_t>(drive_number)};
}

bool read_page(kernel32::Handle drive, std::uint8_t features, std::int32_t drive_number, CommandReply* reply,
               SmartPage* page) {
  std::uint32_t returned = 0;
  const bool read = send_command(drive, kSmartRcvDriveData, smart_command(features, kPageBytes, drive_number),
                                 static_cast<std::uint32_t>(reply->size()), reply, &returned);
  page->code = read ? 0 : kernel32::GetLastError();
  if (!read) reply->fill(0);  // what a failed call left there is no page
  if (read && carries_page(*reply, returned)) page->data.assign(reply->begin() + kReplyHeader, reply->end());
  return read;
}

std::span<const std::uint8_t> entry(const CommandReply& reply, std::size_t index) {
  return std::span(reply).subspan(kFirstEntry + index * kEntryBytes, kEntryBytes);
}

/// How many raw bytes, least significant first, make the raw value of an attribute on the drive identified last.
std::size_t raw_bytes_that_count(std::uint8_t id) {
  constexpr std::uint8_t kPowerOnHours = 9;
  constexpr std::uint8_t kTemperature = 194;
  if (id == kTemperature) return 1;
  if (id == kPowerOnHours) return kRawBytes;
  // This maker packs other counts into the raw bytes of ids 1 and 7.
  const bool packed = upper_case(identification.Disk_Model).find("FUJITSU") != std::string::npos;
  if (packed && (id == 1 || id == 7)) return 0;
  return 2;
}

std::int64_t raw_value(std::span<const std::uint8_t> raw, std::size_t count) {
  std::int64_t value = 0;
  for (std::size_t k = count; k > 0; --k) value = value * 256 + raw[k - 1];
  return value;
}

std::string Byte_To_Hex2(std::uint16_t value) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text;
  do {
    text.insert(text.begin(), kDigits[value % 16]);
    value = static_cast<std::uint16_t>(value / 16);
  } while (value > 0);
  return text.size() == 1 ? "0" + text : text;
}

void add_attribute(std::span<const std::uint8_t> e) {
  Snapshot& snapshot = smart.Smart_Snapshot;
  Smart_Attribute& attribute = snapshot.Attributes.at(snapshot.Attr_Count);
  attribute.Attr_Id = e[0];
  attribute.Attr_Name = AttName(e[0]);
  attribute.Flags = bytes::le16(e, 1);
  attribute.Current = e[3];
  attribute.Worst = e[4];
  const auto raw = e.subspan(kRawOffset, kRawBytes);
  Print_Attribs(attribute, raw);
  attribute.Raw = raw_value(raw, raw_bytes_that_count(attribute.Attr_Id));
  ++snapshot.Attr_Count;
  snapshot.Attributes.emplace_back();
}

}  // namespace

Snapshot Get_Smart_Data(std::int32_t drive) {
  smart = {};
  Snapshot& snapshot = smart.Smart_Snapshot;
  std::array<std::uint8_t, 24> version{};  // GETVERSIONINPARAMS
  if (!Get_Smart_Version(disk.hDrive, version)) {
    smart.values.code = kernel32::GetLastError();
    ShowMessage("Call to GetSmartVersion failed");
    return snapshot;
  }
  const std::uint8_t device_map = version[3];
  if (!Is_Bit_Set(device_map, drive)) ShowMessage("Warning: This device does not have SMART bit set!");
  constexpr int kAtapi = 4;
  snapshot.Drive_Type = Is_Bit_Set(device_map, drive + kAtapi) ? 2 : 1;
  if (!Check_Smart_Enable(disk.hDrive, drive)) {
    smart.values.code = kernel32::GetLastError();
    ShowMessage("CheckSMARTEnable failed.");
    return snapshot;
  }
  ReadAttributesCmd(disk.hDrive, drive);
  PrintReport("ReadAttributesCmd was called");
  ReadThresholdsCmd(disk.hDrive, drive);
  PrintReport("ReadThresholdsCmd was called");
  return snapshot;
}

bool Get_Smart_Version(kernel32::Handle drive, std::span<std::uint8_t, 24> reply) {
  std::uint32_t returned = 0;
  return kernel32::DeviceIoControl(drive, kSmartGetVersion, nullptr, 0, reply.data(),
                                   static_cast<std::uint32_t>(reply.size()), &returned);
}

bool Is_Bit_Set(std::uint8_t byte, int bit) {
  // Bit 7 is never looked at: docs/oddities.md, 22.
  constexpr int kNeverSet = 7;
  return bit < kNeverSet && (byte >> bit & 1) != 0;
}

bool Check_Smart_Enable(kernel32::Handle drive, std::int32_t drive_number) {
  CommandReply reply{};
  return send_command(drive, kSmartSendDriveCommand, smart_command(kEnableOperations, 0, drive_number), kReplyHeader,
                      &reply);
}

bool ReadAttributesCmd(kernel32::Handle drive, std::int32_t drive_number) {
  CommandReply reply{};
  const bool read = read_page(drive, kReadValues, drive_number, &reply, &smart.values);
  for (std::size_t i = 0; i < kEntries; ++i) {
    if (entry(reply, i)[0] != 0) add_attribute(entry(reply, i));
  }
  return read;
}

bool ReadThresholdsCmd(kernel32::Handle drive, std::int32_t drive_number) {
  CommandReply reply{};
  const bool read = read_page(drive, kReadThresholds, drive_number, &reply, &smart.thresholds);
  std::vector<Smart_Attribute>& attributes = smart.Smart_Snapshot.Attributes;
  for (std::size_t i = 0; i < kEntries; ++i) {
    const std::uint8_t id = entry(reply, i)[0];
    if (id == 0) continue;
    const auto match = std::find_if(attributes.begin(), attributes.end(),
                                    [id](const Smart_Attribute& attribute) { return attribute.Attr_Id == id; });
    if (match != attributes.end()) match->Threshold = entry(reply, i)[1];
  }
  return read;
}

void Print_Attribs(const Smart_Attribute& attribute, std::span<const std::uint8_t> raw) {
  const auto low = static_cast<std::uint8_t>(attribute.Flags);
  const auto high = static_cast<std::uint8_t>(attribute.Flags >> 8U);
  std::string line = three_digits(attribute.Attr_Id) + " " + attribute.Attr_Name + " Flags=";
  line += (low & 1U) != 0 ? "W" : "w";
  line += (low & 2U) != 0 ? "O" : "F";
  line += " " + Byte_To_Hex2(low) + "h " + Byte_To_Hex2(high) + "h";
  line += "  Current=" + three_digits(attribute.Current) + "  Worst=" + three_digits(attribute.Worst) + "  Attribs=";
  for (const std::uint8_t byte : raw) line += Byte_To_Hex2(byte) + "h ";
  smart.Smart_List += line + " \r\n";
}
