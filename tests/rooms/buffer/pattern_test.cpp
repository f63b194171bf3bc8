#include "buffer/pattern.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::string normal_form(std::string_view text) {
  return pattern_text(parse_pattern(text));
}

TEST(Pattern, TakesOneToFourBytesFromItsText) {
  EXPECT_EQ(normal_form("a5"), "A5");
  EXPECT_EQ(normal_form("123"), "12");
  EXPECT_EQ(normal_form("12345"), "1234");
  EXPECT_EQ(normal_form("123456"), "123456");
  EXPECT_EQ(normal_form("2c2caa55ff"), "2C2CAA55");
  EXPECT_EQ(normal_form(""), "00");
  EXPECT_EQ(normal_form("5"), "05");
  EXPECT_FALSE(parse_pattern("").replaced);
}

TEST(Pattern, ReplacesBadTextByTheDefault) {
  for (const char* text : {"12G4", " 12", "0x12", "\xFF"}) {
    EXPECT_TRUE(parse_pattern(text).replaced) << text;
    EXPECT_EQ(normal_form(text), "2C2CAA55") << text;
  }
}

TEST(Pattern, FillsEveryLengthAndNothingBeyond) {
  const std::vector<std::uint8_t> pattern{1, 2, 3, 4};
  for (std::size_t length = 1; length <= 4; ++length) {
    for (std::size_t size = 0; size < 200; ++size) {
      std::vector<std::uint8_t> bytes(size + 1, 0xEE);
      fill_pattern(std::span(bytes).first(size), std::span(pattern).first(length));
      for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(bytes[i], pattern[i % length]) << length << " " << size;
      ASSERT_EQ(bytes[size], 0xEE);
    }
  }
}

TEST(Pattern, CountsEveryByteThatDiffers) {
  // The longest takes several rounds, so that a lane that overflows shows.
  for (const std::size_t size : {0, 1, 15, 16, 100, 4080, 4096, 10'000}) {
    const std::vector<std::uint8_t> zeros(size);
    std::vector<std::uint8_t> other(size);
    EXPECT_EQ(count_differing(zeros, other), 0U);
    for (std::size_t i = 0; i < size; i += 3) other[i] = 0xFF;
    EXPECT_EQ(count_differing(zeros, other), (size + 2) / 3);
    other.assign(size, 1);
    EXPECT_EQ(count_differing(zeros, other), size);
  }
}

}  // namespace
