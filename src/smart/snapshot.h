#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "device/kernel32.h"

/// One SMART attribute as a drive lists it (SFF-8035i, attribute values).
struct Smart_Attribute {
  std::uint8_t Attr_Id = 0;  // 0 in the empty element behind the last
  std::string Attr_Name;     // 29 characters
  std::uint8_t Current = 0;
  std::uint8_t Threshold = 0;  // 0 until a threshold of this id was read
  std::uint8_t Worst = 0;
  std::uint16_t Flags = 0;
  std::int64_t Raw = 0;  // of the bytes that count for this id
};

/// A drive's attributes at one moment.
struct Snapshot {
  std::uint8_t Drive_Type = 0;  // 0 no answer, 1 ATA, 2 ATAPI
  std::uint8_t Attr_Count = 0;
  std::vector<Smart_Attribute> Attributes{1};  // in the drive's order, and one empty element
};

/// A page as the drive gave it, 512 bytes; empty where it gave none, with the system error code of the request that
/// failed, 0 for an answer that carries no page.
struct SmartPage {
  std::uint32_t code = 0;
  std::vector<std::uint8_t> data;
};

/// The last snapshot taken, its listing, a line an attribute, and the pages from which both were made.
struct Smart {
  Snapshot Smart_Snapshot;
  std::string Smart_List;
  SmartPage values;
  SmartPage thresholds;
};

inline Smart smart;

/// Takes a snapshot of drive `drive` through disk.hDrive into smart and gives a copy of it. Where the drive does not
/// answer, the snapshot is empty.
Snapshot Get_Smart_Data(std::int32_t drive);

/// Asks the driver for its SMART version; byte 3 of the 24 of `reply` is the device map. False when the call failed.
bool Get_Smart_Version(kernel32::Handle drive, std::span<std::uint8_t, 24> reply);

/// True when bit `bit` of `byte` is set; bit 7 and beyond never are.
bool Is_Bit_Set(std::uint8_t byte, int bit);

bool Check_Smart_Enable(kernel32::Handle drive, std::int32_t drive_number);

/// Reads the attributes into smart. False when the call failed; nothing is added then.
bool ReadAttributesCmd(kernel32::Handle drive, std::int32_t drive_number);

/// Reads the thresholds into the attributes of smart. False when the call failed.
bool ReadThresholdsCmd(kernel32::Handle drive, std::int32_t drive_number);

/// Appends one attribute's line to smart.Smart_List; `raw` are its six raw bytes, least significant first.
void Print_Attribs(const Smart_Attribute& attribute, std::span<const std::uint8_t> raw);

/// The name of SMART attribute `id`, 29 characters; ids without a name give "(unknown parameter)" of that width.
std::string AttName(std::uint8_t id);
