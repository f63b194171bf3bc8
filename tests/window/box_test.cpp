#include <gtest/gtest.h>

#include "tests/window/program.h"

namespace {

/// Presses the button, checks the box's default text, and answers it.
void set_slow_limit(const Program& program, const std::string& shown, const std::string& answer, bool ok) {
  program.press("Set Slow Xfer Limit");
  HWND const box = program.wait_for_box("Set Slow Transfer Threshold Rate");
  ASSERT_NE(box, nullptr);
  HWND const edit = ::FindWindowExA(box, nullptr, "EDIT", nullptr);
  EXPECT_EQ(text_of(edit), shown);
  EXPECT_EQ(::SendMessageA(edit, EM_GETSEL, 0, 0), MAKELRESULT(0, shown.size()));
  EXPECT_FALSE(enabled(program.window()));
  set_text(edit, answer);
  ::PostMessageA(::FindWindowExA(box, nullptr, "BUTTON", ok ? "OK" : "Cancel"), BM_CLICK, 0, 0);
  EXPECT_TRUE(wait_until([&] { return !program.box_is_open() && enabled(program.window()); }));
}

TEST(SlowLimit, TakesNumbersAndAutoAndIsKeptByCancel) {
  const Program program("/VDISK:0=DEMO");
  set_slow_limit(program, "10", "12.5", true);
  set_slow_limit(program, "12.5", "99", false);
  set_slow_limit(program, "12.5", "auto", true);
  set_slow_limit(program, "10", "", true);
  EXPECT_EQ(program.box_is_open(), false);
}

TEST(SlowLimit, TheBoxHoldsItsWholePrompt) {
  const Program program("/VDISK:0=DEMO");
  program.press("Set Slow Xfer Limit");
  HWND const box = program.wait_for_box("Set Slow Transfer Threshold Rate");
  ASSERT_NE(box, nullptr);
  HWND const prompt = ::FindWindowExA(box, nullptr, "STATIC", nullptr);
  EXPECT_EQ(text_of(prompt).rfind("Set Slow Transfer Threshold Rate in MB/Sec\r\nType AUTO", 0), 0U);
  const RECT whole = place_of(box);
  const RECT lines = place_of(prompt);
  constexpr int kFourLines = 4 * 12;
  EXPECT_GE(lines.bottom - lines.top, kFourLines);
  for (HWND child = ::GetWindow(box, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
    const RECT place = place_of(child);
    EXPECT_TRUE(place.left > whole.left && place.right < whole.right && place.bottom < whole.bottom);
    if (child != prompt) EXPECT_GE(place.top, lines.bottom);
  }
}

RECT overlap_of(HWND a, HWND b) {
  const RECT first = place_of(a);
  const RECT second = place_of(b);
  RECT both{};
  ::IntersectRect(&both, &first, &second);
  return both;
}

TEST(Resizing, GivesTheTextTheRoomAndCoversNothing) {
  const Program program("/VDISK:0=DEMO");
  HWND const frame = program.button("  Sector Edit Functions ");
  LONG height = 0;
  // Without the panel, with it below the commands, and beside them.
  for (const SIZE size : {SIZE{800, 600}, {1000, 760}, {1240, 640}, {1270, 800}}) {
    ::SetWindowPos(program.window(), nullptr, 5, 5, size.cx, size.cy, SWP_NOZORDER);
    program.answer_time();
    EXPECT_EQ(program.find("SectorixPicture", "Rate graph") != nullptr, size.cx > 800);
    const RECT text = place_of(program.edit(kText));
    if (size.cx == 1270) EXPECT_GT(text.bottom - text.top, height);
    height = text.bottom - text.top;
    const auto all = program.children();
    for (std::size_t i = 0; i < all.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        const RECT both = overlap_of(all[i], all[j]);
        if (all[i] != frame && all[j] != frame) EXPECT_TRUE(::IsRectEmpty(&both)) << text_of(all[i]) << text_of(all[j]);
      }
    }
  }
}

}  // namespace
