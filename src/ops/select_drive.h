#pragma once

#include <cstdint>

/// Selects the drive whose option is on: opens and identifies it, shows its size in the status line and the label of
/// the start field, and fills the range with the whole disk unless the user edited it. A missing drive is told in the
/// status. The status becomes the text of Text1.
void SelectDrive();

/// The same, but a report that stands in Text1 stays.
void select_drive_keeping_text();

/// Switches drive `drive`'s option on and the others off.
void show_option(int drive);
