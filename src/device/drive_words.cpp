#include "device/drive_words.h"

#include "device/kernel32.h"
#include "device/storage_query.h"
#include "platform/units.h"

namespace {

std::optional<ToldDrive> told_by(const Sender& send) {
  const std::optional<DeviceDescriptor> told = decode_device_descriptor(ask_device_descriptor(send).data);
  if (!told) return std::nullopt;
  ToldDrive drive{.model = model_of(*told),
                  .serial = clean_id(told->serial),
                  .firmware = clean_id(told->revision),
                  .sectors = ask_size(send) / SectorSize,
                  .bus = told->bus};
  if (told->bus != StorageBus::nvme) return drive;
  if (const auto controller = decode_nvme_controller(ask_nvme_controller(send).data)) {
    drive.model = clean_id(controller->model);
    drive.serial = clean_id(controller->serial);
    drive.firmware = clean_id(controller->firmware);
  }
  return drive;
}

}  // namespace

std::optional<ToldDrive> told_without_rights(int drive) {
  const kernel32::Handle handle = open_for_properties(drive);
  if (handle == kernel32::kInvalidHandle) return std::nullopt;
  std::optional<ToldDrive> told = told_by(through(handle));
  kernel32::CloseHandle(handle);
  return told;
}

std::string drive_words(int drive) {
  const std::optional<ToldDrive> told = told_without_rights(drive);
  if (!told) return {};
  std::string text = told->model.empty() ? "Unknown model" : told->model;
  if (!told->serial.empty()) text += ", serial number " + told->serial;
  if (told->sectors > 0) text += ", " + std::to_string(told->sectors / kSectorsPerMb) + "Mb";
  return text + ", " + bus_name(told->bus);
}
