#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "health/health.h"

/// The pages of the protocols, each read by a pure function: bytes in, facts out. None trusts a length, a count or a
/// value beyond what its document allows.

using Bytes = std::span<const std::uint8_t>;

/// Degrees Celsius are Kelvin less these.
inline constexpr int kKelvin = 273;

/// SMART / Health Information (NVM Express base specification 1.4, figure 194), 512 bytes. False, and nothing taken,
/// for a page that holds nothing but zeros or that no drive can mean: a spare above 100 percent, bytes of ones.
/// Counters of more than 64 bits stop at the largest.
bool take_nvme_log(Bytes page, Health* health);

/// Attribute values and thresholds (SFF-8035i), 512 bytes each; `thresholds` may be empty. False for a page whose
/// checksum is wrong or that lists no attribute. `packs_counts`: the maker packs other counts into the upper bytes of
/// raw values.
bool take_ata_pages(Bytes attributes, Bytes thresholds, bool packs_counts, Health* health);

/// SMART RETURN STATUS by the drive's registers (ATA8-ACS, SMART RETURN STATUS): true for a drive that says that it
/// fails, nothing for registers that say neither.
std::optional<bool> status_of_registers(std::uint8_t cylinder_low, std::uint8_t cylinder_high);

/// The same by the sense bytes of a translating bridge (SAT-3, ATA Return Descriptor, or SPC-4 fixed format).
std::optional<bool> status_of_sense(Bytes sense);

/// Informational Exceptions, log page 2Fh (SPC-4, 7.3.11). False for another page or one without that parameter.
bool take_exceptions(Bytes page, Health* health);

/// Temperature, log page 0Dh (SPC-4, 7.3.19). False as above.
bool take_scsi_temperature(Bytes page, Health* health);

/// Total uncorrected errors of an error counter page, 02h for writes and 03h for reads (SPC-4, 7.3.8).
Count uncorrected_errors(Bytes page, std::uint8_t number);

/// Entries of the list of grown defects, by the header that READ DEFECT DATA (10) gives (SBC-3, 5.17). Entries of a
/// format that is not known are none.
Count grown_defects(Bytes header);

/// The 512 bytes of IDENTIFY data in the ATA Information page, 89h (SAT-3, 10.3.2); nothing where the page is another
/// one, too short, or does not carry them.
std::optional<Bytes> identify_in(Bytes page);
