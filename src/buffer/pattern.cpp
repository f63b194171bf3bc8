#include "buffer/pattern.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "buffer/hex_text.h"
#include "platform/units.h"

namespace {

constexpr std::size_t kVector = 16;

__m128i load(const std::uint8_t* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

}  // namespace

Pattern parse_pattern(std::string_view text) {
  Pattern pattern;
  if (!std::all_of(text.begin(), text.end(), [](char c) { return hex_value(c) >= 0; })) {
    pattern = parse_pattern(kDefaultPattern);
    pattern.replaced = true;
    return pattern;
  }
  if (text.size() == 1) pattern.bytes[0] = static_cast<std::uint8_t>(hex_value(text[0]));
  if (text.size() < 2) return pattern;
  pattern.length = std::min(text.size() / 2, pattern.bytes.size());
  for (std::size_t i = 0; i < pattern.length; ++i) {
    pattern.bytes[i] = static_cast<std::uint8_t>(hex_pair_value(text[2 * i], text[2 * i + 1]));
  }
  return pattern;
}

std::string pattern_text(const Pattern& pattern) {
  std::string text;
  for (const std::uint8_t byte : pattern.span()) text += NumbertoHex(byte);
  return text;
}

void fill_pattern(std::span<std::uint8_t> bytes, std::span<const std::uint8_t> pattern) {
  // Every length from 1 to 4 divides three vectors.
  std::array<std::uint8_t, 3 * kVector> block;
  for (std::size_t i = 0; i < block.size(); ++i) block[i] = pattern[i % pattern.size()];
  const __m128i v0 = load(block.data());
  const __m128i v1 = load(&block[kVector]);
  const __m128i v2 = load(&block[2 * kVector]);

  std::size_t at = 0;
  for (; bytes.size() - at >= block.size(); at += block.size()) {
    auto* to = reinterpret_cast<__m128i*>(&bytes[at]);
    _mm_storeu_si128(to, v0);
    _mm_storeu_si128(to + 1, v1);
    _mm_storeu_si128(to + 2, v2);
  }
  std::copy_n(block.begin(), bytes.size() - at, bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

PatternDifference difference_from(std::span<const std::uint8_t> bytes, std::span<const std::uint8_t> pattern) {
  // Every length from 1 to 4 divides three sectors.
  constexpr std::size_t kSector = SectorSize;
  std::array<std::uint8_t, 3 * kSector> block;
  fill_pattern(block, pattern);
  PatternDifference difference;
  for (std::size_t at = 0; at + kSector <= bytes.size(); at += kSector) {
    const std::uint8_t* const sector = &bytes[at];
    const std::uint8_t* const expected = &block.at(at % block.size());
    if (std::memcmp(sector, expected, kSector) == 0) continue;
    if (difference.sectors == 0) {
      difference.first =
          at + static_cast<std::size_t>(std::mismatch(sector, sector + kSector, expected).first - sector);
    }
    ++difference.sectors;
  }
  return difference;
}

std::size_t count_differing(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  const std::size_t size = std::min(a.size(), b.size());
  // A lane of the vector counts up to 4 equal bytes a step, 252 in a round, before it is added to the sum.
  constexpr std::size_t kStep = 4 * kVector;
  constexpr std::size_t kRound = 63 * kStep;
  const __m128i zero = _mm_setzero_si128();
  __m128i sum = zero;
  std::size_t at = 0;
  const std::size_t steps_end = size - size % kStep;
  while (at < steps_end) {
    const std::size_t round_end = std::min(at + kRound, steps_end);
    __m128i lanes = zero;
    for (; at < round_end; at += kStep) {
      const std::uint8_t* const p = a.data() + at;
      const std::uint8_t* const q = b.data() + at;
      const __m128i first =
          _mm_add_epi8(_mm_cmpeq_epi8(load(p), load(q)), _mm_cmpeq_epi8(load(p + kVector), load(q + kVector)));
      const __m128i second = _mm_add_epi8(_mm_cmpeq_epi8(load(p + 2 * kVector), load(q + 2 * kVector)),
                                          _mm_cmpeq_epi8(load(p + 3 * kVector), load(q + 3 * kVector)));
      lanes = _mm_sub_epi8(lanes, _mm_add_epi8(first, second));
    }
    sum = _mm_add_epi64(sum, _mm_sad_epu8(lanes, zero));
  }
  auto equal = static_cast<std::size_t>(_mm_cvtsi128_si64(_mm_add_epi64(sum, _mm_unpackhi_epi64(sum, sum))));
  for (; at < size; ++at) equal += a[at] == b[at] ? 1U : 0U;
  return size - equal;
}
