#include "device/drive_words.h"

#include "device/kernel32.h"
#include "device/storage_query.h"
#include "platform/aside.h"
#include "platform/units.h"
#include "virtualdisk/virtualdisk.h"

namespace {

std::string path_of(int drive) {
  return "\\\\.\\PhysicalDrive" + std::to_string(drive);
}

/// Sends aside; every request opens the drive anew.
Sender aside(int drive) {
  return [name = path_of(drive)](std::uint32_t code, std::span<const std::uint8_t> request, std::size_t room) {
    StorageReply reply{.data = std::vector<std::uint8_t>(room)};
    std::uint32_t returned = 0;
    const bool done =
        platform::control_aside(name.c_str(), code, request.data(), static_cast<std::uint32_t>(request.size()),
                                reply.data.data(), static_cast<std::uint32_t>(room), &returned);
    reply.code = done ? 0 : 1;
    reply.data.resize(done && returned < room ? returned : done ? room : 0);
    return reply;
  };
}

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

std::string system_drive_words(int drive) {
  return virtualdisk::attached(drive) ? std::string() : words(aside(drive));
}

std::string virtual_drive_words(int drive) {
  if (!virtualdisk::attached(drive)) return {};
  const kernel32::Handle handle = open_to_ask(drive);
  if (handle == kernel32::kInvalidHandle) return {};
  std::string text = words(through(handle));
  kernel32::CloseHandle(handle);
  return text;
}
