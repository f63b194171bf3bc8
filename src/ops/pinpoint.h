#pragma once

#include <vector>

#include "measure/bad_places.h"

/// Which sectors of the transfers that failed or stalled are bad.

/// The transfers of the run that failed, for a reason that lies with the drive, or stalled, as many as are kept.
std::vector<BadRange> bad_transfers();

/// Puts them into run_findings.bad, whole as they are, by LBA.
void list_bad_transfers();

/// True if /PINPOINT is on the command line, transfers failed or stalled, and the run was not stopped.
bool wants_pinpoint();

/// Reads those transfers again in pieces and puts the exact ranges into run_findings.bad, those that it did not come to
/// as they are. Opens the selected drive and closes it; reads only. Nothing of it is counted or measured: what it did
/// is run_findings.pinpoint. Ends early at the limits of time and errors, when the user cancels, which is no cancelling
/// of the run, and when the drive is gone.
///
/// A piece is halved down to 256 sectors; a half whose other half is good is bad without being asked. Of a bad piece
/// that small single sectors are read, from its start to the first bad one, from its end to the last bad one, then
/// between them. A sector that failed is read once more, and counts as slow when it then answers; so each is read at
/// most twice by itself. Between two late sectors five others are asked first: where they are late too, so are all.
void pinpoint();
