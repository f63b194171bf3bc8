#pragma once

#include <cstdint>
#include <span>

/// The sector buffer in the large text box.

/// Shows Sec_Buf, up to 20 of the sectors that the last transfer moved. At LBA 0 the partition table follows, then what
/// the buffer holds of a GUID partition table or of logical partitions, and which sectors to read for more. Reads no
/// drive.
void Display_Sec_Buf();

/// The same, but what follows the partition table is read from the drive that filled Sec_Buf, through a handle of its
/// own.
void show_sectors_and_tables();

/// The same for `buffer`, with the title by which the edit view is known; the box scrolls to its end.
void Display_Buf(std::span<const std::uint8_t> buffer);

/// Describes the partition table in Sec_Buf's first sector, in the sector size of what filled the buffer.
void ShowMBRParams();

/// Shows Sec_Buf for editing in place of what the box held; nothing while there is no buffer.
void show_buffer_for_editing();

/// Fills Sec_Buf, made anew to hold kChunkSectors sectors, with the pattern in TxtPattern, and writes the pattern back
/// in its normal form. A bad one is told and the default takes its place: false.
bool fill_buffer();
