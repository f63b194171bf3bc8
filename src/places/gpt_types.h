#pragma once

#include <cstdint>
#include <span>
#include <string>

/// The GUIDs of partitions.

inline constexpr std::size_t kGuidBytes = 16;
using GuidBytes = std::span<const std::uint8_t, kGuidBytes>;

/// "C12A7328-F81F-11D2-BA4B-00A0C93EC93B", from the bytes of a table, whose first three parts are little-endian (UEFI
/// specification, appendix A).
std::string guid_text(GuidBytes guid);

/// The name of a partition's type, or its GUID where it has none here.
std::string gpt_type_name(GuidBytes type);
