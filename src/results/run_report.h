#pragma once

/// Appends the block of how the run ended to Text1 and the report, where it did not come to its end: at which LBA, why,
/// and how much of its work was not done; and of a resumed run what was done before.
void tell_run_end();

/// Appends the block of the bad places, and their variables: what stands in run_findings.bad and .pinpoint.
void tell_bad_places();
