#include <gtest/gtest.h>

#include "tests/window/program.h"

namespace {

constexpr const char* kPractice = "/VDISK:0=DEMO";
constexpr const char* kPicture = "SectorixPicture";

HWND picture(const Program& program, const std::string& begin) {
  for (HWND child : program.children()) {
    if (class_of(child) == kPicture && text_of(child).rfind(begin, 0) == 0) return child;
  }
  return nullptr;
}

bool shows(const Program& program, const std::string& begin) {
  return wait_until([&] { return picture(program, begin) != nullptr; });
}

/// The middle of a picture, as a mouse message has it.
LPARAM middle(HWND window) {
  const RECT place = place_of(window);
  return MAKELPARAM((place.right - place.left) / 2, (place.bottom - place.top) / 2);
}

void read_some(const Program& program) {
  set_text(program.edit(kCount), "60000");
  program.press("Sequential READ");
  ASSERT_TRUE(shows(program, "Progress: finished"));
  ASSERT_TRUE(wait_until([&] { return enabled(program.button("Sequential READ")); }));
}

TEST(Panel, TheMouseAndTheKeyboardSwitchTheView) {
  const Program program(kPractice);
  ASSERT_TRUE(shows(program, "Rate graph"));
  EXPECT_TRUE(checked(program.button("Rate graph")) && !checked(program.button("Block map")));
  program.press("Block map");
  EXPECT_TRUE(shows(program, "Block map"));
  program.set_focus(program.button("Block map"));
  program.key(VK_LEFT);
  EXPECT_TRUE(shows(program, "Rate graph"));
  EXPECT_TRUE(checked(program.button("Rate graph")) && !checked(program.button("Block map")));
  program.access_key('k');
  EXPECT_TRUE(shows(program, "Block map"));
  EXPECT_TRUE(checked(program.button("Drive 0")));
}

TEST(Panel, ADoubleClickTakesTheStart) {
  const Program program(kPractice);
  ASSERT_TRUE(shows(program, "Rate graph"));
  HWND const graph = picture(program, "Rate graph");
  ::PostMessageA(graph, WM_LBUTTONDBLCLK, MK_LBUTTON, middle(graph));  // nothing to take yet
  read_some(program);
  EXPECT_EQ(text_of(program.edit(kStart)), "0");
  ::PostMessageA(graph, WM_LBUTTONDBLCLK, MK_LBUTTON, middle(graph));
  EXPECT_TRUE(wait_until([&] { return text_of(program.edit(kStart)) != "0"; }));
  EXPECT_NEAR(std::stod(text_of(program.edit(kStart))), 30000.0, 3000.0);
}

TEST(Panel, HoveringTellsWhatIsThere) {
  const Program program(kPractice);
  read_some(program);
  for (const char* view : {"Rate graph", "Block map"}) {
    program.press(view);
    ASSERT_TRUE(shows(program, view));
    HWND const graph = picture(program, view);
    ::PostMessageA(graph, WM_MOUSEMOVE, 0, middle(graph));
    ASSERT_TRUE(wait_until([&] { return text_of(graph).find(" ms") != std::string::npos; })) << text_of(graph);
    EXPECT_EQ(text_of(graph).rfind(std::string(view) + ", LBA ", 0), 0U);
    EXPECT_NE(text_of(graph).find(" MB/s ("), std::string::npos);
  }
}

bool becomes(HWND control, bool shown) {
  return wait_until([&] { return (::IsWindowVisible(control) != FALSE) == shown; });
}

bool focus_is_seen(const Program& program) {
  return wait_until([&] { return program.focus() != nullptr && ::IsWindowVisible(program.focus()); });
}

TEST(Panel, SharesTheReportsPlaceInASmallWindow) {
  const Program program(kPractice);
  make_small(program);
  HWND const text = program.edit(kText);
  EXPECT_EQ(picture(program, "Rate graph"), nullptr);
  EXPECT_FALSE(checked(program.button("Rate graph")));
  program.set_focus(text);
  ::SendMessageA(text, EM_SETSEL, 4, 4);
  program.type("typed");
  ASSERT_TRUE(wait_until([&] { return text_of(text).rfind("    typed", 0) == 0; }));
  const std::string typed = text_of(text);

  program.access_key('g');
  ASSERT_TRUE(shows(program, "Rate graph"));
  EXPECT_TRUE(becomes(text, false) && focus_is_seen(program));
  EXPECT_TRUE(checked(program.button("Rate graph")) && !checked(program.button("Report")));
  program.press("Block map");
  EXPECT_TRUE(shows(program, "Block map"));
  program.access_key('e');
  ASSERT_TRUE(becomes(text, true));
  EXPECT_EQ(picture(program, "Block map"), nullptr);
  EXPECT_EQ(text_of(text), typed);
  EXPECT_EQ(::SendMessageA(text, EM_GETSEL, 0, 0), MAKELRESULT(9, 9));

  // A larger one has room for both.
  program.set_focus(program.button("Report"));
  ::SetWindowPos(program.window(), nullptr, 5, 5, 1240, 800, SWP_NOZORDER);
  EXPECT_TRUE(shows(program, "Block map") && becomes(text, true) && focus_is_seen(program));
  EXPECT_EQ(program.button("Report"), nullptr);
  EXPECT_TRUE(wait_until([&] { return checked(program.button("Block map")); }));
}

TEST(Panel, TheReportComesForwardWhereItIsNeeded) {
  const Program program(kPractice);
  make_small(program);
  HWND const text = program.edit(kText);
  program.press("Rate graph");
  ASSERT_TRUE(becomes(text, false));
  read_some(program);
  EXPECT_TRUE(becomes(text, false)) << "a command changes nothing about what is seen";
  EXPECT_NE(text_of(text).find("Finished!"), std::string::npos);
  program.press("Display and Edit Buffer");
  EXPECT_TRUE(becomes(text, true) && checked(program.button("Report")));
  EXPECT_NE(text_of(text).find("0000"), std::string::npos);
}

TEST(Panel, ADoubleClickOnAMarkTakesItsRange) {
  write_file("marked.vd", "sectors 400000\nfail read 200000 8\n");
  const Program program("/VDISK:0=marked.vd");
  make_small(program);
  program.press("Sequential READ");
  ASSERT_TRUE(shows(program, "Progress: finished"));
  ASSERT_TRUE(wait_until([&] { return enabled(program.button("Sequential READ")); }));
  program.choose("More...", 1);
  ASSERT_TRUE(
      wait_until([&] { return text_of(program.edit(kText)).find("SET QV_B_PINPOINTED=YES") != std::string::npos; }));
  ASSERT_TRUE(wait_until([&] { return enabled(program.button("Sequential READ")); }));
  program.press("Rate graph");
  ASSERT_TRUE(shows(program, "Rate graph"));
  HWND const graph = picture(program, "Rate graph");
  program.answer_time();
  // The cross stands at the upper edge of the plot, whose own edges are 44 and 26 pixels wide.
  const RECT place = place_of(graph);
  ::PostMessageA(graph, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(44 + (place.right - place.left - 70) / 2, 41));
  ASSERT_TRUE(wait_until([&] { return text_of(program.edit(kStart)) != "0"; }));
  EXPECT_EQ(text_of(program.edit(kStart)), "200000") << "the sectors themselves, which were pinpointed";
  EXPECT_EQ(text_of(program.edit(kCount)), "8");
}

TEST(Panel, ProgressRunsWithTheCommand) {
  write_file("slow.vd", "sectors 4000000\nrate 60\n");
  const Program program("/VDISK:0=slow.vd");
  EXPECT_TRUE(shows(program, "Progress"));
  program.press("Sequential READ");
  EXPECT_TRUE(wait_until([&] {
    HWND const bar = picture(program, "Progress: reading ");
    return bar != nullptr && text_of(bar).find(" left") != std::string::npos;
  }));
  program.press("Cancel");
  EXPECT_TRUE(shows(program, "Progress: stopped at "));
}

}  // namespace
