#pragma once

#include <cstdint>

/// What the window's controls choose: the drive and the range.

/// Selects the drive whose option is on: opens and identifies it, shows its size in the status line and the label of
/// the start field, and fills the range with the whole disk unless the user edited it. A missing drive is told in the
/// status. The status becomes the text of Text1.
void SelectDrive();

/// The same, but a report that stands in Text1 stays.
void select_drive_keeping_text();

/// Switches drive `drive`'s option on and the others off.
void show_option(int drive);

/// Takes the range from the fields into counters.No_Secs (at least 1), writes it back as plain numbers, and gives the
/// first LBA.
std::int64_t take_range();

/// Turns the percentages that the command line gave into sectors of the identified drive, cut to whole logical ones.
void resolve_percentages();

/// Puts the range that the command line gave, in sectors, into the fields. A start alone means: from there to the end
/// of the disk, one sector where that lies before it.
void show_range_of_command_line();

/// Sectors per transfer of a read of `sectors` sectors.
std::int64_t read_chunk(std::int64_t sectors);
