#pragma once

/// What every operation begins and ends with.

/// Resets the counters and the transfer statistics before an operation.
void Clear_Counters();

/// The operation's time, as it is printed, begins.
void start_timing();

/// The operation's time ends, with its last transfer. What was pressed during that one is dealt with, so that it
/// counts.
void end_timing();

/// Reports the totals, writes their report variables and adds TotalErrors, not the compare errors, to the exit code.
void Do_errors();
