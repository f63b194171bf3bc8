#pragma once

namespace platform {

/// Keeps the system's code of a call that failed, 0 of one that was done, for GetLastError(); gives `done` back.
bool keep_result(bool done);

}  // namespace platform
