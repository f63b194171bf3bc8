#pragma once

/// The report's block of what was read back and compared, and its variables, group V; nothing of a command that did
/// none of it.
void tell_verify();
