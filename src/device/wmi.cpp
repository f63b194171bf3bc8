#include "device/wmi.h"

#include <charconv>
#include <cstddef>
#include <string_view>

#include "platform/units.h"
#include "virtualdisk/virtualdisk.h"

namespace wmi {
namespace {

/// The number behind `before` in `text`, or -1.
int number_behind(std::string_view text, std::string_view before) {
  const std::size_t at = text.find(before);
  int number = -1;
  if (at != std::string_view::npos) {
    std::from_chars(text.data() + at + before.size(), text.data() + text.size(), number);
  }
  return number;
}

bool any_attached() {
  for (int drive = 0; drive < kDriveCount; ++drive) {
    if (virtualdisk::attached(drive)) return true;
  }
  return false;
}

WmiHandle keep_rows(std::vector<std::string> device_ids) {
  state.own_rows[state.next_own] = {std::move(device_ids), 0};
  return state.next_own++;
}

std::string partition_id(int drive, std::size_t index) {
  return "Disk #" + std::to_string(drive) + ", Partition #" + std::to_string(index);
}

/// The rows for a question about a virtual disk; kNoWmi when it is about something else.
WmiHandle own_answer(const std::string& text) {
  const int disk = number_behind(text, R"(Win32_DiskDrive.DeviceID="\\\\.\\PhysicalDrive)");
  if (disk >= 0 && virtualdisk::attached(disk)) {
    std::vector<std::string> partitions;
    for (std::size_t i = 0; i < virtualdisk::volumes(disk).size(); ++i) partitions.push_back(partition_id(disk, i));
    return keep_rows(partitions);
  }
  const int owner = number_behind(text, R"(Win32_DiskPartition.DeviceID="Disk #)");
  if (owner >= 0 && virtualdisk::attached(owner)) {
    const std::vector<std::string> volumes = virtualdisk::volumes(owner);
    const auto index = static_cast<std::size_t>(number_behind(text, "Partition #"));
    return keep_rows(index < volumes.size() ? std::vector<std::string>{volumes[index]} : std::vector<std::string>{});
  }
  return kNoWmi;
}

}  // namespace

WmiHandle open(const std::string& moniker) {
  const WmiHandle service = platform::wmi_open(moniker);
  return service == kNoWmi && any_attached() ? kServiceWithoutSystem : service;
}

WmiHandle query(WmiHandle service, const std::string& text, std::uint32_t flags) {
  const WmiHandle own = service == kNoWmi ? kNoWmi : own_answer(text);
  if (own != kNoWmi || service == kServiceWithoutSystem) return own;
  return platform::wmi_query(service, text, flags);
}

WmiNext next(WmiHandle rows, const std::vector<std::string>& properties, WmiRow* row) {
  const auto own = state.own_rows.find(rows);
  if (own == state.own_rows.end()) return platform::wmi_next(rows, properties, row);
  OwnRows& answer = own->second;
  if (answer.fetched == answer.device_ids.size()) return WmiNext::end;
  row->clear();
  for (const std::string& property : properties) (*row)[property] = "";
  (*row)["DeviceID"] = answer.device_ids[answer.fetched++];
  return WmiNext::row;
}

void close(WmiHandle handle) {
  if (state.own_rows.erase(handle) == 0 && handle != kNoWmi && handle != kServiceWithoutSystem)
    platform::wmi_close(handle);
}

}  // namespace wmi
