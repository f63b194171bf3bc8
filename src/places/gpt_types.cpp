#include "places/gpt_types.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "places/shown_text.h"
#include "platform/bytes.h"

namespace {

struct TypeName {
  std::string_view guid;
  std::string_view name;
};

// UEFI specification, section 5.3.3; Microsoft, PARTITION_INFORMATION_GPT (winioctl.h); UAPI Group, Discoverable
// Partitions Specification; Apple, TN2166; GNU GRUB's and FreeBSD's manuals.
constexpr std::array kNames = {
    TypeName{"C12A7328-F81F-11D2-BA4B-00A0C93EC93B", "EFI system"},
    TypeName{"024DEE41-33E7-11D3-9D69-0008C781F39F", "MBR partition scheme"},
    TypeName{"21686148-6449-6E6F-744E-656564454649", "BIOS boot"},
    TypeName{"E3C9E316-0B5C-4DB8-817D-F92DF00215AE", "Microsoft reserved"},
    TypeName{"EBD0A0A2-B9E5-4433-87C0-68B6B72699C7", "Microsoft basic data"},
    TypeName{"DE94BBA4-06D1-4D40-A16A-BFD50179D6AC", "Windows recovery"},
    TypeName{"5808C8AA-7E8F-42E0-85D2-E1E90434CFB3", "Windows LDM metadata"},
    TypeName{"AF9B60A0-1431-4F62-BC68-3311714A69AD", "Windows LDM data"},
    TypeName{"E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D", "Windows storage spaces"},
    TypeName{"0FC63DAF-8483-4772-8E79-3D69D8477DE4", "Linux filesystem"},
    TypeName{"0657FD6D-A4AB-43C4-84E5-0933C84B4F4F", "Linux swap"},
    TypeName{"E6D6D379-F507-44C2-A23C-238F2A3DF928", "Linux LVM"},
    TypeName{"A19D880F-05FC-4D3B-A006-743F0F84911E", "Linux RAID"},
    TypeName{"933AC7E1-2EB4-4F13-B844-0E14E2AEF915", "Linux home"},
    TypeName{"3B8F8425-20E0-4F3B-907F-1A25A76F98E8", "Linux server data"},
    TypeName{"4F68BCE3-E8CD-4DB1-96E7-FBCAF984B709", "Linux root (x86-64)"},
    TypeName{"44479540-F297-41B2-9AF7-D131D5F0458A", "Linux root (x86)"},
    TypeName{"BC13C2FF-59E6-4262-A352-B275FD6F7172", "Linux extended boot"},
    TypeName{"CA7D7CCB-63ED-4C53-861C-1742536059CC", "Linux LUKS"},
    TypeName{"48465300-0000-11AA-AA11-00306543ECAC", "Apple HFS+"},
    TypeName{"7C3457EF-0000-11AA-AA11-00306543ECAC", "Apple APFS"},
    TypeName{"426F6F74-0000-11AA-AA11-00306543ECAC", "Apple boot"},
    TypeName{"6A898CC3-1DD2-11B2-99A6-080020736631", "ZFS"},
    TypeName{"516E7CB4-6ECF-11D6-8FF8-00022D09712B", "FreeBSD data"},
};

}  // namespace

std::string guid_text(GuidBytes guid) {
  std::string tail;
  for (std::size_t at = 8; at < kGuidBytes; ++at) tail += (at == 10 ? "-" : "") + hex_digits(guid[at], 2);
  return hex_digits(bytes::le32(guid, 0), 8) + "-" + hex_digits(bytes::le16(guid, 4), 4) + "-" +
         hex_digits(bytes::le16(guid, 6), 4) + "-" + tail;
}

std::string gpt_type_name(GuidBytes type) {
  const std::string guid = guid_text(type);
  const auto* const row =
      std::find_if(kNames.begin(), kNames.end(), [&](const TypeName& entry) { return entry.guid == guid; });
  return row == kNames.end() ? guid : std::string(row->name);
}
