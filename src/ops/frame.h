#pragma once

#include <string>

/// The frame that every disk command runs in.

/// Opens and identifies the selected drive for an operation and takes the first SMART snapshot. A missing drive is told and ends the program with 1 when
/// it was started with a command line; in interactive use the operation goes on and its transfers fail.
void Start_Operation();

/// Ends an operation: takes the second SMART snapshot, compares, asks the event log, reports, and closes the drive. Does
/// nothing when the user asked to leave.
void End_Operation();

/// Runs `operation` in the frame of a command that writes: the drive's volumes are locked and dismounted around it.
void run_writing(void (*operation)());

/// Asks whether the selected disk may be overwritten; true without a question in command-line mode.
bool confirm_write(const std::string& title);
