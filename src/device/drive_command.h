#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "device/kernel32.h"

/// ATA commands sent through the system's SMART requests (Windows SDK ntdddisk.h, "SMART support").

inline constexpr std::uint32_t kSmartGetVersion = 0x74080;
inline constexpr std::uint32_t kSmartSendDriveCommand = 0x7C084;
inline constexpr std::uint32_t kSmartRcvDriveData = 0x7C088;

inline constexpr std::uint8_t kIdentifyDevice = 0xEC;  // ATA8-ACS, command codes
inline constexpr std::uint8_t kSmartCommand = 0xB0;

/// The ATA registers of a command.
struct DriveCommand {
  std::uint32_t data_bytes = 0;  // size of the data that come back
  std::uint8_t features = 0;
  std::uint8_t cylinder_low = 0;
  std::uint8_t cylinder_high = 0;
  std::uint8_t command = 0;
  std::uint8_t drive_number = 0;
};

inline constexpr std::size_t kCommandBytes = 32;  // SENDCMDINPARAMS without its buffer byte
inline constexpr std::size_t kReplyHeader = 16;   // SENDCMDOUTPARAMS before its data
inline constexpr std::size_t kPageBytes = 512;
using CommandReply = std::array<std::uint8_t, kReplyHeader + kPageBytes>;

/// Writes SENDCMDINPARAMS: sector count and number 1, drive/head 0xA0 for every drive number.
void put_command(const DriveCommand& command, std::span<std::uint8_t> request);

/// Sends `command` on `drive` with the control code `code` and room for `reply_bytes` of `reply`. The reply is zeros
/// where the drive gave none; `returned`, unless null, gets how many bytes it gave. False when the call failed.
bool send_command(kernel32::Handle drive, std::uint32_t code, const DriveCommand& command, std::uint32_t reply_bytes,
                  CommandReply* reply, std::uint32_t* returned = nullptr);

/// True for a reply of `returned` bytes that carries a whole page, by a driver that says that the command went well
/// (SENDCMDOUTPARAMS, DRIVERSTATUS): drivers have answered with success and bytes of their own.
bool carries_page(std::span<const std::uint8_t> reply, std::uint32_t returned);
