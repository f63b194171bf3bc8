#pragma once

#include <cstdint>
#include <span>

/// The sector buffer in the large text box.

/// Shows Sec_Buf, up to 20 of the sectors that the last transfer moved, and the partition table when it begins at LBA
/// 0.
void Display_Sec_Buf();

/// The same for `buffer`, with the title by which the edit view is known; the box scrolls to its end.
void Display_Buf(std::span<const std::uint8_t> buffer);

/// Describes the partition table in Sec_Buf's first sector. Where that was read from the selected drive's LBA 0 and
/// names a GUID partition table or an extended partition, these are read from the drive, through a handle of its own,
/// and described too.
void ShowMBRParams();

/// Shows Sec_Buf for editing in place of what the box held; nothing while there is no buffer.
void show_buffer_for_editing();

/// Fills Sec_Buf, made anew to hold kChunkSectors sectors, with the pattern in TxtPattern, and writes the pattern back
/// in its normal form. A bad one is told and the default takes its place: false.
bool fill_buffer();
