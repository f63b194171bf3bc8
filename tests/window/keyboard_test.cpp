#include <gtest/gtest.h>

#include <set>

#include "tests/window/program.h"

namespace {

constexpr const char* kPractice = "/VDISK:0=DEMO";
constexpr DWORD kSettles = 150;  // milliseconds in which posted keys have done what they do

/// Presses Tab from the first field back to it.
void tab_through_everything(const Program& program) {
  program.set_focus(program.edit(kStart));
  const auto before = program.contents();
  std::vector<HWND> order;
  do {
    order.push_back(program.focus());
    program.key(VK_TAB);
    ASSERT_TRUE(wait_until([&] { return program.focus() != order.back(); })) << text_of(order.back());
  } while (program.focus() != program.edit(kStart) && order.size() < 40);
  EXPECT_EQ(program.contents(), before);
  EXPECT_FALSE(program.box_is_open());
  std::set<HWND> reached(order.begin(), order.end());
  EXPECT_EQ(reached.size(), order.size());
  for (HWND child : program.children()) {
    const bool stop = (::GetWindowLongA(child, GWL_STYLE) & WS_TABSTOP) != 0 && enabled(child);
    EXPECT_EQ(reached.count(child), stop ? 1U : 0U) << text_of(child);
  }
  EXPECT_EQ(reached.count(program.button("Drive 0")), 1U);
}

TEST(Keyboard, TabGoesThroughEverythingAndChangesNothing) {
  const Program program(kPractice);
  HWND const text = program.edit(kText);
  tab_through_everything(program);
  make_small(program);
  tab_through_everything(program);
  EXPECT_NE(::GetWindowLongA(text, GWL_STYLE) & WS_TABSTOP, 0);
  program.press("Rate graph");
  ASSERT_TRUE(wait_until([&] { return !::IsWindowVisible(text); }));
  tab_through_everything(program);
}

TEST(Keyboard, EnterAndEscapeInAFieldStartNothing) {
  const Program program(kPractice);
  for (const std::size_t field : {kStart, kCount, kPattern}) {
    program.set_focus(program.edit(field));
    const auto before = program.contents();
    program.key(VK_RETURN);
    program.key(VK_ESCAPE);
    ::Sleep(kSettles);
    EXPECT_EQ(program.contents(), before);
    EXPECT_FALSE(program.box_is_open());
    EXPECT_TRUE(program.running());
  }
}

TEST(Keyboard, EscapeCancelsARunningCommandFromAnyControl) {
  write_file("long.vd", "sectors 10000000\nrate 5\n");
  for (const std::size_t field : {kStart, kText}) {
    const Program program("/VDISK:0=long.vd");
    program.press("Sequential READ");
    ASSERT_TRUE(wait_until([&] { return !enabled(program.button("Sequential READ")); }));
    program.set_focus(program.edit(field));
    program.key(VK_ESCAPE);
    EXPECT_TRUE(wait_until([&] { return enabled(program.button("Sequential READ")); }));
    EXPECT_NE(text_of(program.edit(kText)).find("CANCELLED at LBA "), std::string::npos);
  }
}

TEST(Keyboard, TheTextTakesEnterAndMoreThan32Kilobytes) {
  const Program program(kPractice);
  const std::string large(100'000, 'x');
  set_text(program.edit(kText), large);
  program.set_focus(program.edit(kText));
  ::SendMessageA(program.edit(kText), EM_SETSEL, large.size(), static_cast<LPARAM>(large.size()));
  program.key(VK_RETURN);
  program.type("y");
  EXPECT_TRUE(wait_until([&] { return text_of(program.edit(kText)).size() == large.size() + 3; }));
  const std::string end = text_of(program.edit(kText)).substr(large.size());
  EXPECT_TRUE(end == "\r\ny" || end == "y\r\n") << end;  // the translated Enter may come behind the character
}

TEST(Keyboard, LettersWithoutAltStartNothing) {
  const Program program(kPractice);
  program.set_focus(program.button("Drive 0"));
  const auto before = program.contents();
  program.type("prx");
  ::Sleep(300);
  EXPECT_FALSE(program.box_is_open());
  EXPECT_TRUE(program.running());
  EXPECT_EQ(program.contents(), before);
}

TEST(Keyboard, EnterAnswersNoQuestionAboutWriting) {
  const Program program(kPractice);
  ::PostMessageA(program.button("Fill Buffer with Pattern and WRITE"), BM_CLICK, 0, 0);
  ASSERT_NE(program.wait_for_box("WIPE DRIVE?"), nullptr);
  program.key(VK_RETURN);
  EXPECT_TRUE(wait_until([&] { return !program.box_is_open() && enabled(program.window()); }));
  ::Sleep(kSettles);
  EXPECT_EQ(text_of(program.edit(kText)).find("Writing "), std::string::npos);
}

TEST(Keyboard, AccessKeysPressTheirButtons) {
  const Program program(kPractice);
  program.set_focus(program.edit(kStart));
  program.access_key('h');
  HWND const help = program.wait_for_box("Sectorix");
  ASSERT_NE(help, nullptr);
  EXPECT_FALSE(enabled(program.window()));
  ::PostMessageA(help, WM_CLOSE, 0, 0);
  EXPECT_TRUE(wait_until([&] { return !program.box_is_open() && enabled(program.window()); }));
}

}  // namespace
