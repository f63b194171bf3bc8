#pragma once

/// The error totals that every operation ends with.

/// Resets the counters and the transfer statistics before an operation.
void Clear_Counters();

/// Reports the totals, writes their report variables and adds TotalErrors, not the compare errors, to the exit code.
void Do_errors();
