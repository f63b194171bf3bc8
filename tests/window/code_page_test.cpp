// The hex view under the code page that the run was started with: bytes that begin a pair of an East Asian one stand
// everywhere, at every line's end too.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/window/program.h"

namespace {

std::string read_file(const std::string& name) {
  std::ostringstream contents;
  contents << std::ifstream(name, std::ios::binary).rdbuf();
  return contents.str();
}

/// The memo's text as it is, unit by unit; of it the plain characters alone matter here.
std::wstring memo_text(HWND memo) {
  const auto length = static_cast<std::size_t>(::SendMessageW(memo, WM_GETTEXTLENGTH, 0, 0));
  std::wstring text(length + 1, L'\0');
  text.resize(
      static_cast<std::size_t>(::SendMessageW(memo, WM_GETTEXT, length + 1, reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

void press_ok(const Program& program, HWND box) {
  ::PostMessageA(box, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(wait_until([&] { return ::IsWindow(box) == FALSE; }));
  program.answer_time();
}

TEST(CodePage, ATypedDigitChangesOneByteAndNoOther) {
  const char* const expected = std::getenv("SECTORIX_CODE_PAGE");
  ASSERT_EQ(::GetACP(), expected != nullptr ? static_cast<UINT>(std::atoi(expected)) : 1252U);
  std::string image;
  for (int i = 0; i < 2 * 512; ++i) image += static_cast<char>(i < 512 ? 0x81 + i % 0x7C : 0xFC - i % 0x10);
  write_file("pairs.img", image);
  const Program program("/VDISK:0=pairs.img");
  program.press("Sequential READ");
  ASSERT_TRUE(wait_until([&] { return text_of(program.edit(kText)).find("Finished!") != std::string::npos; }));
  ASSERT_TRUE(wait_until([&] { return enabled(program.button("Sequential READ")); }));
  program.press("Display and Edit Buffer");
  HWND const memo = program.edit(kText);
  const auto place_of_byte = [&] { return memo_text(memo).find(L"\r\n0010 "); };
  ASSERT_TRUE(wait_until([&] { return place_of_byte() != std::wstring::npos; }));

  const auto at = static_cast<WPARAM>(place_of_byte() + 7);
  program.set_focus(memo);
  ::SendMessageA(memo, EM_SETSEL, at, static_cast<LPARAM>(at + 1));
  program.type("0");
  ASSERT_TRUE(wait_until([&] { return memo_text(memo)[at] == L'0'; }));
  program.press("WRITE using Buffer");
  HWND const box = program.wait_for_box("Sectorix");
  ASSERT_NE(box, nullptr);
  std::string question;
  for (HWND child = ::GetWindow(box, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
    if (class_of(child) == "Static") question += text_of(child);
  }
  EXPECT_EQ(question.rfind("1 bytes edited - OK to overwrite 2 sectors?", 0), 0U) << question;
  press_ok(program, box);
  HWND const second = program.wait_for_box("Write 2 sectors starting at sector 0 from the buffer?");
  ASSERT_NE(second, nullptr);
  press_ok(program, second);

  ASSERT_TRUE(wait_until([&] { return read_file("pairs.img") != image; }));
  EXPECT_TRUE(wait_until([&] { return enabled(program.button("Sequential READ")); }));
  image[0x10] = static_cast<char>(image[0x10] & 0x0F);
  EXPECT_TRUE(read_file("pairs.img") == image);
}

}  // namespace
