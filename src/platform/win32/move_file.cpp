#include "platform/system.h"
#include "platform/win32/last_error.h"
#include "platform/win32/win_api.h"

namespace platform {

bool MoveFileExA(const char* from, const char* to, std::uint32_t flags) {
  return keep_result(::MoveFileExA(from, to, flags) != FALSE);
}

bool DeleteFileA(const char* name) {
  return keep_result(::DeleteFileA(name) != FALSE);
}

}  // namespace platform
