#pragma once

/// What an operation found out about the drive's health, told: the report's last block, its variables, the drive's
/// history, and with /EXIT:VERDICT the exit code.

/// Tells it. `writes`: the command wrote to the drive, so that no history on it is touched.
void tell_health(bool writes);

/// Asks for the folder in which the drives' histories are kept from now on.
void ask_history_folder();
