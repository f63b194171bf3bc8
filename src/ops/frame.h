#pragma once

#include <string>

#include "platform/clock.h"
#include "smart/snapshot.h"

/// The frame of an operation: the drive opened and identified before it, SMART data and the event log around it, its
/// counters and totals.

/// What the running or last operation's frame keeps between its start and its end.
struct Frame {
  std::string Smart_Text;  // both SMART listings
  Snapshot before;
  platform::DateTime Op_Start_Date;
  platform::DateTime start_utc;
};

inline Frame frame;

/// Opens and identifies the selected drive for an operation and takes the first SMART snapshot. A missing drive is told
/// and ends the program with 1 when it was started with a command line; in interactive use the operation goes on and
/// its transfers fail.
void Start_Operation();

/// Ends an operation: takes the second SMART snapshot, compares, asks the event log, reports, and closes the drive.
void End_Operation();

/// Sets the exit code to 0, opens and identifies the selected drive and, in a batch, makes sure that it is the one that
/// the run may work on. False when the drive is missing, which is told as for Start_Operation.
bool open_for_operation();

/// Resets the counters and the transfer statistics before an operation.
void Clear_Counters();

/// The operation's time, as it is printed, begins.
void start_timing();

/// The operation's time ends, with its last transfer. What was pressed during that one is dealt with, so that it
/// counts.
void end_timing();

/// Reports the totals and writes their report variables.
void tell_totals();

/// tell_totals(), and adds TotalErrors, not the compare errors, to the exit code.
void Do_errors();

/// "Time taken= 0.5 seconds for 3 sectors.", with its line end.
std::string time_taken();

/// Reports `line`, the time taken, then the totals.
void report_end(const std::string& line);

/// Lets `show` append to Text1 and writes what it appended to the report.
void show_in_report(void (*show)());
