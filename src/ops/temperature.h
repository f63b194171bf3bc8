#pragma once

/// The drive's temperature during a run: looked at every 30 seconds between two transfers, shown beside the rates, and
/// with /MAXTEMP a reason to pause. Only of drives that answer at once.

/// Looks at the selected drive's temperature for the first time; from here on it is looked at between transfers.
void begin_temperature_watch();

void end_temperature_watch();
