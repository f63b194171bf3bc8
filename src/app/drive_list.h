#pragma once

/// Writes a line for each drive that answers to standard output: number, model, serial, firmware, sectors and size,
/// separated by tabs. Gives the process's exit code: 0, or 1 when none answers or the list cannot be
/// written.
int list_drives();
