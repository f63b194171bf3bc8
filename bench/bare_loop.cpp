// The least that a Windows program can do: SetFilePointerEx and ReadFile in a loop. What Sectorix is measured against.

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>

namespace {

constexpr std::int64_t kSectorBytes = 512;

struct Request {
  HANDLE file = INVALID_HANDLE_VALUE;
  std::int64_t file_bytes = 0;
  std::int64_t transfer = 0;  // bytes
  std::int64_t count = 0;     // of transfers at random places
  void* buffer = nullptr;
};

bool read_at(const Request& request, std::int64_t offset, std::int64_t bytes) {
  LARGE_INTEGER place{};
  place.QuadPart = offset;
  DWORD moved = 0;
  return ::SetFilePointerEx(request.file, place, nullptr, FILE_BEGIN) != FALSE &&
         ::ReadFile(request.file, request.buffer, static_cast<DWORD>(bytes), &moved, nullptr) != FALSE &&
         moved == static_cast<DWORD>(bytes);
}

bool read_in_order(const Request& request) {
  for (std::int64_t at = 0; at < request.file_bytes; at += request.transfer) {
    if (!read_at(request, at, std::min(request.transfer, request.file_bytes - at))) return false;
  }
  return true;
}

bool read_at_random(const Request& request) {
  const auto places = static_cast<std::uint64_t>((request.file_bytes - request.transfer) / kSectorBytes);
  std::uint64_t state = 1;
  for (std::int64_t i = 0; i < request.count; ++i) {
    // Knuth's linear congruential generator; its upper bits are the good ones.
    state = state * 6364136223846793005U + 1442695040888963407U;
    const auto sector = static_cast<std::int64_t>((state >> 33U) % places);
    if (!read_at(request, sector * kSectorBytes, request.transfer)) return false;
  }
  return true;
}

double seconds() {
  LARGE_INTEGER now{};
  LARGE_INTEGER frequency{};
  ::QueryPerformanceCounter(&now);
  ::QueryPerformanceFrequency(&frequency);
  return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

DWORD WINAPI sleep_for_ever(void* /*unused*/) {
  ::Sleep(INFINITE);
  return 0;
}

}  // namespace

int main(int words, char** word) {
  const bool beside = words == 6 && std::string_view(word[5]) == "beside";
  const bool at_random = (words == 5 || beside) && std::string_view(word[2]) == "random";
  const bool in_order = words == 4 && std::string_view(word[2]) == "order";
  if (!at_random && !in_order) {
    std::fputs(
        "bare_loop FILE order SECTORS | bare_loop FILE random SECTORS COUNT [beside]: prints the seconds it took\n",
        stderr);
    return 2;
  }
  Request request;
  request.file =
      ::CreateFileA(word[1], GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  LARGE_INTEGER size{};
  if (request.file == INVALID_HANDLE_VALUE || ::GetFileSizeEx(request.file, &size) == FALSE) return 1;
  request.file_bytes = size.QuadPart;
  request.transfer = std::atoll(word[3]) * kSectorBytes;
  if (at_random) request.count = std::atoll(word[4]);
  constexpr std::align_val_t kPage{4096};
  request.buffer = ::operator new(static_cast<std::size_t>(request.transfer), kPage);
  // Some systems' calls cost more in a process of two threads, even if one sleeps.
  if (beside) ::CloseHandle(::CreateThread(nullptr, 0, sleep_for_ever, nullptr, 0, nullptr));
  const double start = seconds();
  const bool done = at_random ? read_at_random(request) : read_in_order(request);
  const double took = seconds() - start;
  ::operator delete(request.buffer, kPage);
  ::CloseHandle(request.file);
  if (!done) return 1;
  std::printf("%.6f\n", took);
  return 0;
}
