#include "device/drive_command.h"

#include "platform/bytes.h"

void put_command(const DriveCommand& command, std::span<std::uint8_t> request) {
  constexpr std::uint8_t kDriveHead = 0xA0;
  bytes::put_le(request, 0, 4, command.data_bytes);
  request[4] = command.features;
  request[5] = 1;  // sector count
  request[6] = 1;  // sector number
  request[7] = command.cylinder_low;
  request[8] = command.cylinder_high;
  request[9] = kDriveHead;
  request[10] = command.command;
  request[12] = command.drive_number;
}

bool send_command(kernel32::Handle drive, std::uint32_t code, const DriveCommand& command, std::uint32_t reply_bytes,
                  CommandReply* reply, std::uint32_t* returned) {
  std::array<std::uint8_t, kCommandBytes> request{};
  put_command(command, request);
  reply->fill(0);
  std::uint32_t came = 0;
  const bool done =
      kernel32::DeviceIoControl(drive, code, request.data(), kCommandBytes, reply->data(), reply_bytes, &came);
  if (returned != nullptr) *returned = came;
  return done;
}

bool carries_page(std::span<const std::uint8_t> reply, std::uint32_t returned) {
  constexpr std::size_t kDriverError = 4;
  return returned >= kReplyHeader + kPageBytes && reply[kDriverError] == 0;
}
