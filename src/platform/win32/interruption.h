#pragma once

namespace win32 {

/// Calls the handler of an interruption that came from the console or the session's end since the last call. An exit
/// waits while the disk holds data that are not its own.
void turn_interruptions();

/// The session ends: the next turn_interruptions() exits.
void request_exit();

}  // namespace win32
