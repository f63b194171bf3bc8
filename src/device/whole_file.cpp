#include "device/whole_file.h"

#include "device/kernel32.h"

WholeFile read_whole_file(const std::string& name) {
  constexpr std::uint32_t kPart = 1U << 16U;
  WholeFile whole;
  const kernel32::Handle file =
      kernel32::CreateFileA(name.c_str(), platform::kGenericRead, platform::kShareRead, platform::kOpenExisting, 0);
  if (file == kernel32::kInvalidHandle) {
    whole.open_code = kernel32::GetLastError();
    return whole;
  }
  std::uint32_t moved = 0;
  do {
    const std::size_t filled = whole.bytes.size();
    whole.bytes.resize(filled + kPart);
    if (!kernel32::ReadFile(file, whole.bytes.data() + filled, kPart, &moved)) {
      whole.read_code = kernel32::GetLastError();
      moved = 0;
    }
    whole.bytes.resize(filled + moved);
  } while (moved != 0);
  kernel32::CloseHandle(file);
  return whole;
}
