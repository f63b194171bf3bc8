#pragma once

/// Writes a line for each drive that answers to standard output: number, model, serial, firmware, sectors and size,
/// separated by tabs. Gives the process's exit code: 0, or 1 when none answers or the list cannot be
/// written.
int list_drives();

/// Lists the selected drive's SMART attributes in the report and Text1, in place of what Text1 held. A missing drive is
/// told as for an operation.
void list_smart();
