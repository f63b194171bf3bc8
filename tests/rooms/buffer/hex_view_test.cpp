#include "buffer/hex_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "buffer/hex_text.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::uint8_t> sectors(std::size_t count, std::uint8_t byte = 0) {
  return std::vector<std::uint8_t>(count * 512, byte);
}

TEST(HexView, LaysOutOneSector) {
  auto bytes = sectors(1, 'x');
  constexpr std::uint8_t kLine[16] = {0x45, 0x46, 0x49, 0x20, 0x50, 0x41, 0x52, 0x54, 0, 0, 1, 0, 0x5C, 0, 0, 0};
  std::copy(std::begin(kLine), std::end(kLine), bytes.begin());
  const std::string view = hex_view(bytes, 4096, 1, kEditTitle);
  EXPECT_THAT(view,
              StartsWith("\r\n\r\n============= EDIT SECTOR DATA (up to first 20 sectors) ================\r\n"
                         "\r\n\r\n[Sector 4096]  2MB\r\n"
                         "0000 45 46 49 20 50 41 52 54 - 00 00 01 00 5C 00 00 00  EFI PART ....\\...\r\n0010 78 "));
  EXPECT_THAT(view, EndsWith("\r\n01F0 78 78 78 78 78 78 78 78 - 78 78 78 78 78 78 78 78  xxxxxxxx xxxxxxxx\r\n"
                             "\r\n========= END OF SECTOR DATA ================\r\n"));
}

TEST(HexView, MasksOnlyTheCodesUpTo13) {
  auto bytes = sectors(1);
  for (std::size_t i = 0; i < 256; ++i) bytes[i] = static_cast<std::uint8_t>(i);
  const std::string view = hex_view(bytes, 0, 1, kViewTitle);
  EXPECT_THAT(view, HasSubstr("0C 0D 0E 0F  ........ ......\x0E\x0F\r\n"));
  EXPECT_THAT(view, HasSubstr("FC FD FE FF  \xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF7 \xF8\xF9\xFA\xFB\xFC\xFD\xFE\xFF\r\n"));
}

TEST(HexView, ShowsAtMostTwentySectorsAndWhatTheBufferHolds) {
  const std::string full = hex_view(sectors(128), 2040, 128, kViewTitle);
  EXPECT_THAT(full, HasSubstr("\r\n\r\n[Sector 2059]  1MB\r\n2600 "));
  EXPECT_THAT(full, HasSubstr("\r\n27F0 "));
  EXPECT_THAT(full, Not(HasSubstr("[Sector 2060]")));
  EXPECT_EQ(hex_view(sectors(2), 0, 8'225'280, kViewTitle), hex_view(sectors(2), 0, 2, kViewTitle));
  EXPECT_EQ(hex_view(sectors(2), 0, -1, kViewTitle),
            "\r\n\r\n============= SECTOR DATA (up to first 20 sectors) ================\r\n"
            "\r\n\r\n========= END OF SECTOR DATA ================\r\n");
}

TEST(HexText, PrintsAnEvenNumberOfDigits) {
  EXPECT_EQ(NumbertoHex(0), "00");
  EXPECT_EQ(NumbertoHex(255), "FF");
  EXPECT_EQ(NumbertoHex(256), "0100");
  EXPECT_EQ(NumbertoHex(4096), "1000");
  EXPECT_EQ(hex_padded(0, 1), "0");
  EXPECT_EQ(hex_padded(0x1A3, 4), "01A3");
}

TEST(HexText, UpperCasesWhatItTests) {
  std::string text = "4aF";
  EXPECT_TRUE(Is_Hex(text));
  EXPECT_EQ(text, "4AF");
  std::string other = "4g";
  EXPECT_FALSE(Is_Hex(other));
  EXPECT_EQ(other, "4G");
  std::string none;
  EXPECT_FALSE(Is_Hex(none));
}

}  // namespace
