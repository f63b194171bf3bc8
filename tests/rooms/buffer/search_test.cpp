#include "buffer/search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "buffer/search_kernels.h"
#include "platform/headless/headless.h"
#include "platform/text.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytes_of(std::string_view text) {
  return {text.begin(), text.end()};
}

std::int64_t find(std::string_view search_string, std::string_view text) {
  return FindStringPosinBuffer(parse_search(search_string), bytes_of(text));
}

Bytes upper(Bytes bytes) {
  const search_kernels::UpperCase upper_case = platform::ansi_upper_case();
  for (std::uint8_t& byte : bytes) byte = upper_case[byte];
  return bytes;
}

std::size_t plainly(const Bytes& memory, const Bytes& pattern) {
  const auto at = std::search(memory.begin(), memory.end(), pattern.begin(), pattern.end());
  return at == memory.end() ? search_kernels::kNotFound : static_cast<std::size_t>(at - memory.begin());
}

void expect_as_plainly(const Bytes& memory, const Bytes& pattern) {
  ASSERT_EQ(search_kernels::find_bytes(memory, pattern), plainly(memory, pattern));
  ASSERT_EQ(search_kernels::find_any_case(memory, upper(pattern), platform::ansi_upper_case()),
            plainly(upper(memory), upper(pattern)));
}

TEST(Search, ReadsTheFourKinds) {
  EXPECT_EQ(find("tfindME", "..FINDme"), 0);
  EXPECT_EQ(find("TfindME", "..FINDme"), 3);
  EXPECT_EQ(find("tt x", "a t x"), 3);
  EXPECT_EQ(find("H0531", "\x05\x05\x31"), 2);
  EXPECT_EQ(find("H6a6B", "ijk"), 2);
  EXPECT_EQ(find("!H2E", "...x."), 4);
  EXPECT_EQ(find("!H2E41", "....A"), 5);
  EXPECT_EQ(find("!H2E", "....."), 0);
}

TEST(Search, TellsWhatIsWrong) {
  EXPECT_EQ(parse_search("H053").error, "Hex values must be in twos");
  EXPECT_EQ(parse_search("!H05 31").error, "Hex values cannot contain spaces");
  EXPECT_EQ(parse_search("H0G").error, "Please use Hexadecimal characters only (0-9,A-F)");
  EXPECT_EQ(parse_search("H0G").problem, SearchProblem::bad_hex);
  for (const char* text : {"x", "h05", "!h05", "!", ""}) {
    EXPECT_EQ(parse_search(text).problem, SearchProblem::bad_prefix) << text;
  }
  EXPECT_EQ(parse_search("look").error, "Search string must begin with t or T or H or !H");
}

TEST(Search, FindsNothingForAnEmptyPattern) {
  for (const char* text : {"t", "T", "H", "!H"}) EXPECT_EQ(find(text, "some text"), 0) << text;
}

TEST(Search, FoldsTheLettersOfTheCodePage) {
  EXPECT_EQ(find("T\xE4\x9A\xFF", ".\xC4\x8A\x9F"), 2);
  EXPECT_EQ(find("T\xC4\x8E\x9F", ".\xE4\x9E\xFF"), 2);
  for (const char* pair : {"\xD7\xF7", "\xDF\xFF", "[{", "\x83\xA3", "@`"}) {
    EXPECT_EQ(find(std::string("T") + pair[0], std::string(1, pair[1])), 0);
    EXPECT_EQ(find(std::string("T") + pair[1], std::string(1, pair[0])), 0);
  }
}

TEST(Search, LeavesTheLeadBytesOfADoubleByteCodePageAlone) {
  EXPECT_EQ(find("T\xE4\xC5", "\xC4\xE5"), 1);
  headless::desktop.code_page = 932;
  EXPECT_EQ(find("T\xE4\xC5", "\xC4\xE5\xE4\xC5"), 3);
  EXPECT_EQ(find("T\x9A\xFEz", "\x8A\xFEZ\x9A\xFEZ"), 4);
}

TEST(SearchKernels, FindAMatchAtEveryPlace) {
  for (std::size_t size = 0; size < 150; ++size) {
    for (const char* text : {"x", "Xy", "xYz", "a rather long pattern, longer than a vector"}) {
      const Bytes pattern = bytes_of(text);
      Bytes memory(size, '.');
      expect_as_plainly(memory, pattern);
      for (std::size_t at = 0; at + pattern.size() <= size; ++at) {
        memory.assign(size, '.');
        std::copy(pattern.begin(), pattern.end(), memory.begin() + static_cast<std::ptrdiff_t>(at));
        memory.shrink_to_fit();
        expect_as_plainly(memory, pattern);
      }
    }
  }
}

TEST(SearchKernels, AgreeWithAPlainSearchOnFewLetters) {
  std::mt19937 random(3);
  for (int round = 0; round < 3000; ++round) {
    Bytes memory(random() % 400);
    for (std::uint8_t& byte : memory) byte = "aAb"[random() % (2 + round % 2)];
    Bytes pattern(1 + random() % 12);
    for (std::uint8_t& byte : pattern) byte = "aAb"[random() % 3];
    expect_as_plainly(memory, pattern);
  }
}

TEST(SearchKernels, CrossWindowsAndTurnSteadyWithoutMissing) {
  // Every byte of the pattern is common and nearly every place agrees with half of it.
  Bytes pattern;
  for (int i = 0; i < 400; ++i) pattern.push_back("ab"[i % 2]);
  pattern[200] = 'b';
  Bytes memory(600'000);
  for (std::size_t i = 0; i < memory.size(); ++i) memory[i] = "ab"[i % 2];
  EXPECT_EQ(search_kernels::find_bytes(memory, pattern), search_kernels::kNotFound);
  for (const std::size_t at : {100'000UL, 262'000UL, 599'600UL}) {
    Bytes holding = memory;
    std::copy(pattern.begin(), pattern.end(), holding.begin() + static_cast<std::ptrdiff_t>(at));
    EXPECT_EQ(search_kernels::find_bytes(holding, pattern), at);
    EXPECT_EQ(search_kernels::find_any_case(holding, upper(pattern), platform::ansi_upper_case()), at);
  }
}

TEST(SearchKernels, FindTheFirstByteThatDiffers) {
  for (std::size_t size = 0; size < 200; ++size) {
    Bytes memory(size, 0x2E);
    EXPECT_EQ(search_kernels::find_differing(memory, 0x2E), search_kernels::kNotFound);
    for (std::size_t at = size; at-- > 0;) {
      memory[at] = 0xAE;
      ASSERT_EQ(search_kernels::find_differing(memory, 0x2E), at);
    }
  }
}

}  // namespace
