#pragma once

/// The frame that every disk command runs in.

/// Opens and identifies the selected drive for an operation. A missing drive is told and ends the program with 1 when
/// it was started with a command line; in interactive use the operation goes on and its transfers fail.
void Start_Operation();

/// Ends an operation: closes the drive. Does nothing when the user asked to leave.
void End_Operation();
