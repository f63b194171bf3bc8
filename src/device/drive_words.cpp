#include "device/drive_words.h"

#include "device/kernel32.h"
#include "device/storage_query.h"
#include "platform/units.h"

namespace {

std::string words(const Sender& send) {
  const std::optional<DeviceDescriptor> told = decode_device_descriptor(ask_device_descriptor(send).data);
  if (!told) return {};
  std::string model = model_of(*told);
  std::string serial = clean_id(told->serial);
  if (told->bus == StorageBus::nvme) {
    if (const auto controller = decode_nvme_controller(ask_nvme_controller(send).data)) {
      model = clean_id(controller->model);
      serial = clean_id(controller->serial);
    }
  }
  const std::int64_t sectors = ask_size(send) / kSectorSize;
  std::string text = model.empty() ? "Unknown model" : model;
  if (!serial.empty()) text += ", serial number " + serial;
  if (sectors > 0) text += ", " + std::to_string(sectors / kSectorsPerMb) + "Mb";
  return text + ", " + bus_name(told->bus);
}

}  // namespace

std::string drive_words(int drive) {
  const kernel32::Handle handle = open_for_properties(drive);
  if (handle == kernel32::kInvalidHandle) return {};
  std::string text = words(through(handle));
  kernel32::CloseHandle(handle);
  return text;
}
