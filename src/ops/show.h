#pragma once

/// Reads the range, one sector unless /COUNT gave a number, in its frame and shows the buffer and, at LBA 0, the
/// partition table in the report.
void show_command();

/// Lists the selected drive's SMART attributes once.
void smart_command();
