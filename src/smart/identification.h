#pragma once

#include <cstdint>
#include <string>

#include "device/kernel32.h"
#include "device/storage_query.h"

/// Who told model, serial number and firmware.
enum class IdentitySource : std::uint8_t {
  none,
  identify,         // IDENTIFY DEVICE
  scsi_port,        // IDENTIFY through the SCSI port of the drive's number, which may be another drive's
  nvme_controller,  // Identify Controller
  descriptor,       // the driver's device descriptor
  inquiry           // SCSI INQUIRY
};

/// The source in words: "IDENTIFY DEVICE", "SCSI port" ...
const char* source_name(IdentitySource source);

/// What the selected drive is. Sizes in 512-byte sectors.
struct Identification {
  std::int64_t Drive_Sectors = 0;     // the largest count that any source gave; 0 = unknown
  std::int64_t Id_Total_Sectors = 0;  // by IDENTIFY's count
  std::string Model_No;               // raw strings
  std::string Serial_No;
  std::string Firmware_Rev;
  std::string Disk_Model;  // cleaned strings
  std::string Disk_Serial;
  std::string Disk_Firmware;
  std::int32_t Num_Cyls = 0;
  std::int32_t Num_Heads = 0;
  std::int32_t Sectors_Per_Track = 0;
  IdentitySource source = IdentitySource::none;
  StorageBus bus = StorageBus::unknown;
};

inline Identification identification;

/// Finds out what drive `drive` is, through disk.hDrive and handles of its own: IDENTIFY, geometry, the SCSI port where
/// these two gave nothing, READ CAPACITY and length. The largest count wins. Where that is one, the sizes of its
/// sectors and the bus are asked for, and where none gave a model whoever else may tell it. The sizes go into
/// disk.sizes: the driver's word counts, else the geometry's, else IDENTIFY's. A drive that has told of logical sectors
/// of 512 bytes itself is not asked again. True when there is a count.
bool Check_drv(std::int32_t drive);

/// True when the serial number is certain to be the drive's own.
bool serial_is_its_own();

/// Sends the ATA command `command` (IDENTIFY DEVICE) on `drive` and takes what it tells. False when the call failed or
/// the reply carries no page.
bool Get_IDE_params(kernel32::Handle drive, std::uint8_t command, std::int32_t drive_number);

/// Cylinders x tracks x sectors of the geometry request on disk.hDrive, times what one of its sectors has, which goes
/// into disk.sizes; 0 when it fails.
std::int64_t Get_Disk_Geometry_Size();

/// Opens the SCSI port `port` in place of disk.hDrive and sends IDENTIFY through its miniport.
void Get_Scsi_Identify(std::int32_t port);

/// READ CAPACITY by SCSI pass-through or, where it is larger, the length request, through a handle of its own; 0 when
/// neither answered.
std::int64_t Get_Capacity_PassThrough(std::int32_t drive);

/// The disk's length in bytes; 0 when the call fails.
std::int64_t Get_Length_Info(kernel32::Handle drive);
