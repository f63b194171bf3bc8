// The speed of searching, comparing, filling and dumping memory in the Windows program itself, as ratios to its own
// memcmp, memset and snprintf. Arguments: three files of which the first 10 MiB are taken, noise, text and zeros.
// Prints one line a row: its name, the least ratio that must hold, the ratio; exit code 1 when one does not.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "buffer/hex_view.h"
#include "buffer/pattern.h"
#include "buffer/search_kernels.h"
#include "platform/text.h"
#include "platform/units.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Work = std::function<std::size_t()>;

constexpr std::size_t kMemory = 10U << 20U;
constexpr int kRounds = 31;

// Through pointers that may change, so that no call is worked out by the compiler.
int (*volatile library_memcmp)(const void*, const void*, std::size_t) = std::memcmp;
void* (*volatile library_memset)(void*, int, std::size_t) = std::memset;

volatile std::size_t kept = 0;

double seconds_of(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  kept = work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// How many times as fast as `other` `ours` is: the median over rounds in which they take turns.
double speed_ratio(const Work& ours, const Work& other) {
  std::array<double, kRounds> ratios{};
  seconds_of(ours);
  seconds_of(other);
  for (double& ratio : ratios) {
    const double theirs = seconds_of(other);
    ratio = theirs / seconds_of(ours);
  }
  std::nth_element(ratios.begin(), ratios.begin() + kRounds / 2, ratios.end());
  return ratios[kRounds / 2];
}

int failed = 0;

void row(const std::string& name, double least, const Work& ours, const Work& other) {
  const double ratio = speed_ratio(ours, other);
  if (ratio < least) ++failed;
  std::printf("%s\t%.2f\t%.2f\n", name.c_str(), least, ratio);
}

Bytes beginning_of(const char* name) {
  Bytes bytes(kMemory);
  std::ifstream file(name, std::ios::binary);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (file.gcount() != static_cast<std::streamsize>(bytes.size())) bytes.clear();
  return bytes;
}

Bytes bytes_of(const std::string& text) {
  return {text.begin(), text.end()};
}

void searches(const std::string& on, const Bytes& memory, const Work& compare) {
  const Bytes absent = bytes_of("Sectorix was here");
  const search_kernels::UpperCase upper_case = platform::ansi_upper_case();
  const Bytes absent_upper = bytes_of("SECTORIX WAS HERE");
  row(
      "search, case-sensitive, on " + on + " / its own memcmp", 0.45,
      [&] { return search_kernels::find_bytes(memory, absent); }, compare);
  row(
      "search, any case, on " + on + " / its own memcmp", 0.40,
      [&] { return search_kernels::find_any_case(memory, absent_upper, upper_case); }, compare);
}

/// Memory in which a pattern nearly stands at every second place: what candidates cost must not multiply.
void hostile_search(const Work& compare) {
  Bytes memory;
  while (memory.size() < kMemory) memory.insert(memory.end(), {'a', 'b'});
  const auto pattern_of = [](std::size_t halves) {
    Bytes pattern;
    for (std::size_t i = 0; i < 2 * halves; ++i) {
      if (i == halves) pattern.push_back('b');
      pattern.insert(pattern.end(), {'a', 'b'});
    }
    return pattern;
  };
  const std::span<const std::uint8_t> whole(memory);
  const Bytes long_one = pattern_of(1600);
  row(
      "search on periodic memory: 10 MiB / 5 MiB twice", 0.80,
      [&] { return search_kernels::find_bytes(whole, long_one); },
      [&] {
        return search_kernels::find_bytes(whole.first(kMemory / 2), long_one) +
               search_kernels::find_bytes(whole.last(kMemory / 2), long_one);
      });
  // A search that tries each place anew would be a thousand times slower with the longest.
  for (const std::size_t halves : {2U, 25U, 400U, 6400U}) {
    const Bytes pattern = pattern_of(halves);
    row(
        "search on periodic memory for " + std::to_string(pattern.size()) + " bytes / its own memcmp", 0.03,
        [&] { return search_kernels::find_bytes(whole, pattern); }, compare);
  }
}

/// The dump as one would write it first: one snprintf a byte.
std::string dump_by_snprintf(std::span<const std::uint8_t> bytes) {
  std::string text;
  std::array<char, 64> piece{};
  const auto put = [&](const char* format, auto... values) {
    const int length = std::snprintf(piece.data(), piece.size(), format, values...);
    text.append(piece.data(), static_cast<std::size_t>(length));
  };
  for (std::size_t at = 0; at < bytes.size(); at += 16) {
    if (at % 512 == 0) put("\r\n\r\n[Sector %u]  %uMB", static_cast<unsigned>(at / 512), 0U);
    put("\r\n%04X ", static_cast<unsigned>(at));
    for (std::size_t i = 0; i < 16; ++i) put(i == 8 ? "- %02X " : " %02X", static_cast<unsigned>(bytes[at + i]));
    put("  ");
    for (std::size_t i = 0; i < 16; ++i) put("%c", bytes[at + i] < 14 ? '.' : static_cast<char>(bytes[at + i]));
  }
  return text;
}

}  // namespace

int main(int words, char** word) {
  if (words != 4) {
    std::fputs("kernel_bench NOISE TEXT ZEROS\n", stderr);
    return 2;
  }
  const Bytes noise = beginning_of(word[1]);
  const Bytes text = beginning_of(word[2]);
  const Bytes zeros = beginning_of(word[3]);
  if (noise.empty() || text.empty() || zeros.empty()) {
    std::fputs("kernel_bench: a file cannot be read or is too small\n", stderr);
    return 2;
  }
  const Bytes same = noise;
  Bytes filled(kMemory);
  const Work compare = [&] {
    return static_cast<std::size_t>(library_memcmp(noise.data(), same.data(), noise.size()));
  };

  searches("noise", noise, compare);
  searches("text", text, compare);
  searches("zeros", zeros, compare);
  Bytes one_among_zeros(33, 0);
  one_among_zeros[16] = 1;
  row(
      "search for 00 .. 01 .. 00 on zeros / its own memcmp", 0.30,
      [&] { return search_kernels::find_bytes(zeros, one_among_zeros); }, compare);
  hostile_search(compare);
  row(
      "first byte that differs / its own memcmp", 1.20, [&] { return search_kernels::find_differing(zeros, 0); },
      compare);
  row(
      "compare with an exact count / its own memcmp", 0.75, [&] { return count_differing(noise, same); }, compare);
  const std::array<std::uint8_t, 4> pattern = {0x2C, 0x2C, 0xAA, 0x55};
  row(
      "fill with a pattern / its own memset", 0.50,
      [&] {
        fill_pattern(filled, pattern);
        return std::size_t{filled.back()};
      },
      [&] {
        library_memset(filled.data(), 0x2C, filled.size());
        return std::size_t{filled.back()};
      });
  const auto sectors = std::span(noise).first(20 * 512);
  row(
      "hex dump of 20 sectors / one by snprintf", 10.0,
      [&] { return hex_view(sectors, 0, kShownSectors, kViewTitle).size(); },
      [&] { return dump_by_snprintf(sectors).size(); });
  return failed == 0 ? 0 : 1;
}
