#pragma once

#include <string>

/// The frame that every disk command runs in.

/// Opens and identifies the selected drive for an operation and takes the first SMART snapshot. A missing drive is told
/// and ends the program with 1 when it was started with a command line; in interactive use the operation goes on and
/// its transfers fail.
void Start_Operation();

/// Ends an operation: takes the second SMART snapshot, compares, asks the event log, reports, and closes the drive.
/// Does nothing when the user asked to leave.
void End_Operation();

/// Sets the exit code to 0, opens and identifies the selected drive and, in a run with /OP, makes sure that it is the
/// one that the run may work on. False when the drive is missing, which is told as for Start_Operation.
bool open_for_operation();

/// Lets `show` append to Text1 and writes what it appended to the report.
void show_in_report(void (*show)());

/// Runs `operation` in the frame of a command that writes: the drive's volumes are locked and dismounted around it.
void run_writing(void (*operation)());

/// Asks whether the selected disk may be overwritten; true without a question in command-line mode.
bool confirm_write(const std::string& title);
