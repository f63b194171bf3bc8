#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Searching memory, first match only, without a copy of it. Nothing but the standard library and SSE2, which every
/// x86-64 processor has; the C library's own routines are too slow on Windows.
namespace search_kernels {

using Bytes = std::span<const std::uint8_t>;

inline constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

/// The upper case of each byte.
using UpperCase = std::array<std::uint8_t, 256>;

namespace detail {

inline constexpr std::size_t kVector = 16;
inline constexpr std::size_t kStep = 4 * kVector;

/// How the bytes of the memory are looked at.
struct AsIs {
  static std::uint8_t fold(std::uint8_t byte) { return byte; }
};
struct AnyCase {
  explicit AnyCase(const UpperCase& upper_case) : upper(upper_case) {
    for (std::size_t code = 0; code < upper.size(); ++code) {
      bits[upper[code]] = static_cast<std::uint8_t>(bits[upper[code]] | (code ^ upper[code]));
    }
  }

  std::uint8_t fold(std::uint8_t byte) const { return upper[byte]; }

  const UpperCase& upper;
  std::array<std::uint8_t, 256> bits{};  // in which the codes of one upper-case letter differ from it
};

inline __m128i load(const std::uint8_t* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

inline unsigned mask_of(__m128i equal) {
  return static_cast<unsigned>(_mm_movemask_epi8(equal));
}

/// One byte of the pattern that every candidate is asked for first. With the case bits set it may let a stranger pass;
/// the comparison that follows does not.
template <class Case>
struct Probe {
  Probe(Bytes pattern, std::size_t position, const Case& letters)
      : at(position),
        case_bits(_mm_set1_epi8(static_cast<char>(letters.bits[pattern[position]]))),
        value(_mm_or_si128(_mm_set1_epi8(static_cast<char>(pattern[position])), case_bits)) {}

  __m128i matches(const std::uint8_t* start) const {
    return _mm_cmpeq_epi8(_mm_or_si128(load(start + at), case_bits), value);
  }

  std::size_t at;
  __m128i case_bits;
  __m128i value;
};

template <>
struct Probe<AsIs> {
  Probe(Bytes pattern, std::size_t position, const AsIs& /*letters*/)
      : at(position), value(_mm_set1_epi8(static_cast<char>(pattern[position]))) {}

  __m128i matches(const std::uint8_t* start) const { return _mm_cmpeq_epi8(load(start + at), value); }

  std::size_t at;
  __m128i value;
};

struct Positions {
  std::size_t rarest;
  std::size_t second;
};

/// The two positions of `pattern` whose bytes are rarest in a sample of `memory`; the same one twice when there is one.
template <class Case>
Positions rarest_positions(Bytes memory, Bytes pattern, const Case& letters) {
  // No power of two, so that the pieces do not all lie at the starts of sectors and records.
  constexpr std::size_t kPieces = 17;
  constexpr std::size_t kPiece = 64;
  std::array<std::uint16_t, 256> seen{};
  const std::size_t stride = std::max(memory.size() / kPieces, kPiece);
  for (std::size_t piece = 0; piece < memory.size(); piece += stride) {
    for (const std::uint8_t byte : memory.subspan(piece, std::min(kPiece, memory.size() - piece))) {
      ++seen[letters.fold(byte)];
    }
  }
  Positions positions{0, pattern.size() - 1};
  if (seen[pattern[positions.second]] < seen[pattern[positions.rarest]]) std::swap(positions.rarest, positions.second);
  for (std::size_t i = 1; i + 1 < pattern.size(); ++i) {
    const std::uint16_t count = seen[pattern[i]];
    if (count < seen[pattern[positions.rarest]]) {
      positions = {i, positions.rarest};
    } else if (count < seen[pattern[positions.second]] && pattern[i] != pattern[positions.rarest]) {
      positions.second = i;
    }
  }
  return positions;
}

/// How many bytes from `start` on agree with `pattern`.
template <class Case>
std::size_t agreeing(const std::uint8_t* start, Bytes pattern, const Case& letters) {
  std::size_t i = 0;
  while (i < pattern.size() && letters.fold(start[i]) == pattern[i]) ++i;
  return i;
}

/// Knuth, Morris and Pratt: slower, but the same for every memory.
template <class Case>
std::size_t find_steadily(Bytes memory, Bytes pattern, const Case& letters) {
  std::vector<std::size_t> border(pattern.size(), 0);
  for (std::size_t i = 1, length = 0; i < pattern.size(); ++i) {
    while (length > 0 && pattern[i] != pattern[length]) length = border[length - 1];
    if (pattern[i] == pattern[length]) ++length;
    border[i] = length;
  }
  std::size_t matched = 0;
  for (std::size_t i = 0; i < memory.size(); ++i) {
    const std::uint8_t byte = letters.fold(memory[i]);
    while (matched > 0 && byte != pattern[matched]) matched = border[matched - 1];
    if (byte == pattern[matched]) ++matched;
    if (matched == pattern.size()) return i + 1 - matched;
  }
  return kNotFound;
}

/// First match that starts among the first `starts` bytes of `memory`, which holds all of the last one.
template <class Case>
std::size_t find_in_window(Bytes memory, std::size_t starts, Bytes pattern, const Case& letters) {
  const Positions positions = rarest_positions(memory, pattern, letters);
  const Probe<Case> rarest(pattern, positions.rarest, letters);
  const Probe<Case> second(pattern, positions.second, letters);
  // Comparing candidates may cost this much, in bytes, before the steady way takes over: time stays linear.
  constexpr std::size_t kCandidate = 16;
  std::size_t allowance = 4096 + 2 * starts;

  const auto* const first = memory.data();
  std::size_t at = 0;
  for (; at + kStep <= starts; at += kStep) {
    const std::uint8_t* const p = first + at;
    const __m128i m0 = _mm_and_si128(rarest.matches(p), second.matches(p));
    const __m128i m1 = _mm_and_si128(rarest.matches(p + kVector), second.matches(p + kVector));
    const __m128i m2 = _mm_and_si128(rarest.matches(p + 2 * kVector), second.matches(p + 2 * kVector));
    const __m128i m3 = _mm_and_si128(rarest.matches(p + 3 * kVector), second.matches(p + 3 * kVector));
    if (mask_of(_mm_or_si128(_mm_or_si128(m0, m1), _mm_or_si128(m2, m3))) == 0) continue;
    std::uint64_t candidates = mask_of(m0) | std::uint64_t{mask_of(m1)} << 16 | std::uint64_t{mask_of(m2)} << 32 |
                               std::uint64_t{mask_of(m3)} << 48;
    for (; candidates != 0; candidates &= candidates - 1) {
      const std::size_t start = at + static_cast<std::size_t>(std::countr_zero(candidates));
      const std::size_t agreed = agreeing(first + start, pattern, letters);
      if (agreed == pattern.size()) return start;
      if (allowance < agreed + kCandidate) {
        const std::size_t found = find_steadily(memory.subspan(start), pattern, letters);
        return found == kNotFound ? kNotFound : start + found;
      }
      allowance -= agreed + kCandidate;
    }
  }
  const std::size_t found = at < starts ? find_steadily(memory.subspan(at), pattern, letters) : kNotFound;
  return found == kNotFound ? kNotFound : at + found;
}

template <class Case>
std::size_t find(Bytes memory, Bytes pattern, const Case& letters) {
  if (pattern.empty() || memory.size() < pattern.size()) return kNotFound;
  const std::size_t starts = memory.size() - pattern.size() + 1;
  // What is rare changes along a disk, so each window picks its own probes.
  const std::size_t window = std::max<std::size_t>(std::size_t{256} * 1024, 8 * pattern.size());
  for (std::size_t at = 0; at < starts; at += window) {
    const std::size_t count = std::min(window, starts - at);
    const std::size_t found = find_in_window(memory.subspan(at, count + pattern.size() - 1), count, pattern, letters);
    if (found != kNotFound) return at + found;
  }
  return kNotFound;
}

}  // namespace detail

/// Index of the first place where `pattern` stands in `memory`; kNotFound when there is none or `pattern` is empty.
/// Linear in the sizes of both.
inline std::size_t find_bytes(Bytes memory, Bytes pattern) {
  return detail::find(memory, pattern, detail::AsIs());
}

/// The same without regard to case. Requires: `upper_pattern` is in upper case already, by `upper_case`.
inline std::size_t find_any_case(Bytes memory, Bytes upper_pattern, const UpperCase& upper_case) {
  return detail::find(memory, upper_pattern, detail::AnyCase(upper_case));
}

/// Index of the first byte of `memory` that is not `value`; kNotFound when all are.
inline std::size_t find_differing(Bytes memory, std::uint8_t value) {
  using detail::kVector;
  const __m128i wanted = _mm_set1_epi8(static_cast<char>(value));
  std::size_t at = 0;
  for (; memory.size() - at >= detail::kStep; at += detail::kStep) {
    const std::uint8_t* const p = memory.data() + at;
    const __m128i m0 = _mm_cmpeq_epi8(detail::load(p), wanted);
    const __m128i m1 = _mm_cmpeq_epi8(detail::load(p + kVector), wanted);
    const __m128i m2 = _mm_cmpeq_epi8(detail::load(p + 2 * kVector), wanted);
    const __m128i m3 = _mm_cmpeq_epi8(detail::load(p + 3 * kVector), wanted);
    constexpr unsigned kAll = 0xFFFF;
    if (detail::mask_of(_mm_and_si128(_mm_and_si128(m0, m1), _mm_and_si128(m2, m3))) != kAll) break;
  }
  for (; at < memory.size(); ++at) {
    if (memory[at] != value) return at;
  }
  return kNotFound;
}

}  // namespace search_kernels
