#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "app/controls.h"
#include "platform/geometry.h"

namespace {

using platform::Control;
using platform::ControlKind;
using platform::Rect;
using platform::Size;
using Id = ControlId;

struct Placed {
  Size client;
  int dpi;
  int arrangement;
  std::vector<Rect> places = std::vector<Rect>(kControlCount);

  Placed(Size size, int dots, int what = kReportInFront) : client(size), dpi(dots), arrangement(what) {
    place_controls(client, dpi, arrangement, places);
  }

  const Rect& of(Id id) const { return places[static_cast<std::size_t>(id)]; }
};

bool overlap(const Rect& a, const Rect& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

bool inside(const Rect& inner, const Rect& outer) {
  return inner.x >= outer.x && inner.y >= outer.y && inner.x + inner.width <= outer.x + outer.width &&
         inner.y + inner.height <= outer.y + outer.height;
}

bool in_frame(std::size_t index) {
  return index > static_cast<std::size_t>(Id::Frame1) && index <= static_cast<std::size_t>(Id::CmdWrite);
}

/// Where the panel has a place of its own there is no tab for the report, else one stands in front of the other.
bool hidden(const Placed& window, std::size_t index) {
  const auto id = static_cast<Id>(index);
  if (panel_has_own_place(window.client, window.dpi)) return id == Id::report_tab;
  return id == (window.arrangement == kReportInFront ? Id::picture : Id::Text1);
}

/// Every combination of a screen from 800x600 to 4K, less what its frame takes, with a scaling of 100 to 200 %, and
/// windows from the smallest on; each with the report and with a picture in front.
std::vector<Placed> many_windows() {
  std::vector<Placed> windows;
  for (const Size screen : {Size{800, 560}, Size{1024, 768}, Size{1280, 900}, Size{1366, 768}, Size{1920, 1080},
                            Size{2560, 1440}, Size{3840, 2160}}) {
    for (const int dpi : {96, 120, 144, 168, 192})
      windows.emplace_back(Size{screen.width - 16, screen.height - 39}, dpi);
  }
  for (int width = 760; width < 1300; width += 37) windows.emplace_back(Size{width, 480 + (width - 760) % 211}, 96);
  for (std::size_t i = 0, count = windows.size(); i < count; ++i) {
    windows.emplace_back(windows[i].client, windows[i].dpi, kPictureInFront);
  }
  return windows;
}

/// The width of a caption in the system's 9-point face, on the wide side: capitals 8 pixels, the rest 6.
int caption_width(const char* caption) {
  int width = 0;
  for (const char* at = caption; *at != '\0'; ++at) {
    if (*at != '&') width += std::isupper(static_cast<unsigned char>(*at)) != 0 ? 8 : 6;
  }
  return width;
}

TEST(Layout, NothingOverlapsOrLeavesTheWindow) {
  for (const Placed& window : many_windows()) {
    SCOPED_TRACE(std::to_string(window.client.width) + "x" + std::to_string(window.client.height) + " at " +
                 std::to_string(window.dpi));
    const Rect client{0, 0, window.client.width, window.client.height};
    for (std::size_t i = 0; i < kControlCount; ++i) {
      const bool shown = window.places[i].width > 0 && window.places[i].height > 0;
      ASSERT_EQ(shown, !hidden(window, i)) << i;
      ASSERT_TRUE(inside(window.places[i], client)) << i;
      for (std::size_t j = 0; j < i; ++j) {
        if (j == static_cast<std::size_t>(Id::Frame1) && in_frame(i)) {
          ASSERT_TRUE(inside(window.places[i], window.places[j])) << i;
        } else {
          ASSERT_FALSE(overlap(window.places[i], window.places[j])) << i << " and " << j;
        }
      }
    }
  }
}

TEST(Layout, CaptionsFitTheirControls) {
  constexpr int kButtonEdges = 12;
  constexpr int kOptionMark = 22;
  const auto table = main_window();
  for (const Placed& window : many_windows()) {
    const int shown_dpi = platform::fitting_dpi(window.client, kLeastSize, kWholeSize, window.dpi);
    for (std::size_t i = 0; i < kControlCount; ++i) {
      const Control& row = table.controls[i];
      if (hidden(window, i)) continue;
      int needed = caption_width(row.caption);
      if (row.kind == ControlKind::button || row.kind == ControlKind::tab) needed += kButtonEdges;
      if (row.kind == ControlKind::option) needed += kOptionMark;
      ASSERT_LE(platform::scaled(needed, shown_dpi), window.places[i].width + 1) << row.name;
    }
    ASSERT_LE(platform::scaled(caption_width("Start (0-1953525167999)"), shown_dpi), window.of(Id::LblStart).width);
  }
}

TEST(Layout, ResizingGivesTheTextTheRoom) {
  const Placed small({1200, 561}, 96);
  const Placed large({1600, 1000}, 96);
  EXPECT_EQ(large.of(Id::Text1).height - small.of(Id::Text1).height, 1000 - 561);
  EXPECT_EQ(large.of(Id::Text1).width - small.of(Id::Text1).width, 1600 - 1200);
  for (const Id id : {Id::CmdRead, Id::TxtNoSecs, Id::CmdWrite, Id::Option8}) {
    EXPECT_EQ(large.of(id).y, small.of(id).y);
    EXPECT_EQ(large.of(id).height, small.of(id).height);
  }
}

TEST(Layout, CommandsThatWriteStandApart) {
  const Placed window({1000, 760}, 96);
  const auto gap = [&window](Id above, Id below) {
    return window.of(below).y - window.of(above).y - window.of(above).height;
  };
  EXPECT_GE(gap(Id::CmdFind, Id::CmdRnd), 2 * gap(Id::CmdRndRD, Id::CmdFind));
  EXPECT_GE(gap(Id::CmdDisplay, Id::cmdWriteBuffer), 2 * gap(Id::CmdRndRD, Id::CmdFind));
  EXPECT_EQ(window.of(Id::cmdWriteBuffer).y, window.of(Id::CmdWrite).y);
}

TEST(Layout, TabOrderReadsEachGroupFromTopToBottom) {
  const Placed window({1000, 760}, 96);
  const std::vector<std::vector<Id>> groups = {{Id::TxtStartLBA, Id::TxtNoSecs, Id::TxtCurrent, Id::progress_bar},
                                               {Id::CmdRead, Id::CmdRndRD, Id::CmdFind, Id::CmdRnd},
                                               {Id::CmdSlowRate, Id::cmdCancel, Id::CmdHelp, Id::CmdExit},
                                               {Id::CmdDisplay, Id::cmdWriteBuffer},
                                               {Id::TxtPattern, Id::CmdWrite},
                                               {Id::graph_tab, Id::picture, Id::TxtStatus},
                                               {Id::Option1, Id::TxtStartLBA, Id::Frame1, Id::TxtStatus, Id::Text1}};
  for (const auto& group : groups) {
    for (std::size_t i = 1; i < group.size(); ++i) {
      EXPECT_LT(group[i - 1], group[i]);
      EXPECT_LT(window.of(group[i - 1]).y, window.of(group[i]).y);
    }
  }
}

TEST(Layout, AScalingTooLargeForTheScreenGivesWay) {
  const auto fitting = [](Size client, int dpi) { return platform::fitting_dpi(client, kLeastSize, kWholeSize, dpi); };
  EXPECT_EQ(fitting({760, 480}, 192), 96);
  EXPECT_EQ(fitting({1520, 1360}, 192), 192);
  EXPECT_EQ(fitting({1520, 1020}, 192), 144);  // for the panel
  EXPECT_EQ(fitting({1520, 600}, 192), 120);   // no room for it at 100 % either
  EXPECT_EQ(fitting({0, 0}, 192), 1);
}

TEST(Layout, ThePanelTakesTheFreeRoomAndLeavesTheTextItsOwn) {
  const Placed wide({1264, 861}, 96);
  EXPECT_GE(wide.of(Id::picture).x, wide.of(Id::CmdExit).x + wide.of(Id::CmdExit).width);
  EXPECT_EQ(wide.of(Id::picture).y + wide.of(Id::picture).height, wide.of(Id::Frame1).y + wide.of(Id::Frame1).height);
  EXPECT_GE(wide.of(Id::picture).width, 440);
  for (const Placed& window : many_windows()) {
    if (!panel_has_own_place(window.client, window.dpi)) continue;
    const bool beside = window.of(Id::picture).y < window.of(Id::Frame1).y;
    EXPECT_TRUE(beside || window.of(Id::Text1).height >= window.of(Id::picture).height) << window.client.width;
  }
  EXPECT_TRUE(panel_has_own_place({1008, 729}, 96) && panel_has_own_place({1264, 861}, 192));
  EXPECT_FALSE(panel_has_own_place({784, 521}, 96));
}

TEST(Layout, AWindowTooSmallForThePanelOffersItInTheReportsPlace) {
  for (const Size client : {Size{760, 480}, {784, 521}, {900, 600}}) {
    const Rect report = Placed(client, 96).of(Id::Text1);
    const Rect picture = Placed(client, 96, kPictureInFront).of(Id::picture);
    EXPECT_EQ(picture.y, report.y);
    EXPECT_EQ(picture.width, report.width);
    EXPECT_EQ(picture.height, report.height);
    EXPECT_GE(picture.height, 80) << "what the graph needs";
    EXPECT_GE(Placed(client, 96).of(Id::health_line).width, 340);
  }
}

}  // namespace
