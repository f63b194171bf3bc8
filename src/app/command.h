#pragma once

/// Runs a command of the window with its fellow buttons locked; nothing while another one runs. A drive pressed
/// meanwhile is selected afterwards, so that no command ever touches a second drive.
void run_command(void (*command)());
