#pragma once

/// The error totals that every operation ends with.

/// Resets the counters and the transfer statistics before an operation.
void Clear_Counters();

/// Reports the totals, writes their report variables and adds TotalErrors, not the compare errors, to the exit code.
void Do_errors();

/// The seconds between the operation's start and end as printed: the difference of two single-precision times of day,
/// negative across midnight.
float elapsed_seconds();
