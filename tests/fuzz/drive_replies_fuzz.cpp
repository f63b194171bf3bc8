// A drive that answers every request with bytes of its own choosing: the calls that the program makes are answered
// here.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "device/kernel32.h"
#include "disk/drive.h"
#include "health/ask.h"
#include "health/verdict.h"
#include "smart/compare.h"
#include "smart/identification.h"
#include "smart/snapshot.h"

namespace {

const std::uint8_t* reply = nullptr;
std::size_t left = 0;

std::uint8_t next_byte() {
  if (left == 0) return 0;
  --left;
  return *reply++;
}

}  // namespace

namespace kernel32 {

Handle CreateFileA(const char*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {
  return 4;
}
bool DeviceIoControl(Handle, std::uint32_t, const void*, std::uint32_t, void* out, std::uint32_t out_bytes,
                     std::uint32_t* returned) {
  // The first byte says whether the call succeeds, the next how short the reply is.
  const std::uint8_t verdict = next_byte();
  const std::size_t wanted = verdict % 2 == 0 ? out_bytes : next_byte();
  const std::size_t bytes = std::min<std::size_t>({wanted, out_bytes, left});
  if (bytes > 0) std::memcpy(out, reply, bytes);
  reply += bytes;
  left -= bytes;
  *returned = static_cast<std::uint32_t>(bytes);
  return verdict < 0xF0;
}
bool SetEndOfFile(Handle) {
  return false;
}
bool SetFilePointerEx(Handle, std::int64_t, std::int64_t*, std::uint32_t) {
  return true;
}
bool ReadFile(Handle, void*, std::uint32_t, std::uint32_t*) {
  return false;
}
bool WriteFile(Handle, const void*, std::uint32_t, std::uint32_t*) {
  return false;
}
bool LockFile(Handle, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {
  return false;
}
bool UnlockFile(Handle, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {
  return false;
}
bool FlushFileBuffers(Handle) {
  return false;
}
bool CloseHandle(Handle) {
  return true;
}
std::uint32_t FormatMessageA(std::uint32_t, std::uint32_t, char*, std::uint32_t) {
  return 0;
}
void ExitProcess(std::uint32_t) {
  std::abort();
}
std::uint32_t GetLastError() {
  return 0;
}

}  // namespace kernel32

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  reply = data;
  left = size;
  OpenDrive(0);
  const bool found = Check_drv(0);
  if (found != (identification.Drive_Sectors > 0) || identification.Drive_Sectors < 0) std::abort();
  for (const char c : identification.Disk_Model) {
    if (static_cast<unsigned char>(c) < 32 || static_cast<unsigned char>(c) >= 128) std::abort();
  }
  const Snapshot before = Get_Smart_Data(0);
  const Health health = ask_health(0);
  judge(health, health, {});
  Get_Smart_Data(0);
  if (smart.Smart_Snapshot.Attributes.size() != smart.Smart_Snapshot.Attr_Count + 1U) std::abort();
  Compare_smart_info(before);
  return 0;
}
