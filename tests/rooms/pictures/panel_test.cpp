#include "pictures/panel.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "app/handlers.h"
#include "form/form1.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "pictures/progress_bar.h"
#include "platform/headless/canvas.h"
#include "tests/support/rig.h"

namespace {

using headless::Drawn;
using platform::Canvas;
using platform::Mark;
using platform::Point;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// The practice disk's places.
constexpr double kSectors = 2097152.0;
constexpr double kUnreadable = 624000.0;
constexpr double kSlow = 1249248.0;

class PanelPicture : public Rig {
 protected:
  void read_practice_disk() {
    open("/VDISK:0=DEMO");
    click(CmdRead_Click);
  }

  static Canvas painted(platform::Size size = {464, 216}, int dpi = 96, platform::SystemColors colors = {}) {
    Canvas canvas{size, dpi, colors, {}};
    kPanelPicture.paint(&canvas);
    return canvas;
  }

  /// Where the marks of a kind stand in the range, 0 to 1. The legend's are not in the plot.
  static std::vector<double> marks(const Canvas& canvas, Mark mark) {
    std::vector<double> places;
    for (const Drawn& drawn : canvas.drawn) {
      if (drawn.what != Drawn::What::mark || drawn.mark != mark || !contains(panel.plot, drawn.points[0])) continue;
      places.push_back(static_cast<double>(drawn.points[0].x - panel.plot.x) / panel.plot.width);
    }
    return places;
  }

  static std::vector<std::string> texts(const Canvas& canvas) {
    std::vector<std::string> all;
    for (const Drawn& drawn : canvas.drawn) {
      if (drawn.what == Drawn::What::text) all.push_back(drawn.text);
    }
    return all;
  }

  /// The middle of the mark of an error or of slow transfers.
  static Point mark_of(bool error) {
    const auto found = std::find_if(panel.marks.begin(), panel.marks.end(),
                                    [error](const PlacedMark& one) { return one.mark.error == error; });
    EXPECT_NE(found, panel.marks.end());
    return {found->place.x + found->place.width / 2, found->place.y + found->place.height / 2};
  }

  static Point in_cell(double lba) {
    const auto cell = static_cast<std::int64_t>(lba / kSectors * static_cast<double>(panel.grid.cells));
    const platform::Rect place = place_of_cell(panel.grid, cell);
    return {place.x + 1, place.y + 1};
  }

  /// The range that the fields show: first LBA, first LBA behind.
  static std::pair<double, double> range_after(Point double_click) {
    kPanelPicture.on_double_click(double_click);
    const double first = std::stod(form1.TxtStartLBA.text());
    return {first, first + std::stod(form1.TxtNoSecs.text())};
  }

  static Point in_plot(double share) {
    return {panel.plot.x + static_cast<int>(share * panel.plot.width), panel.plot.y + 5};
  }
};

TEST_F(PanelPicture, IsACalmHintBeforeARun) {
  open("/VDISK:0=DEMO");
  EXPECT_THAT(texts(painted()), ::testing::ElementsAre("The rates of a run appear here."));
  kPanelPicture.on_double_click({200, 100});
  EXPECT_EQ(form1.TxtStartLBA.text(), "0");
  EXPECT_FALSE(form1.RangeEdited);
}

TEST_F(PanelPicture, MarksStandWhereTheDiskIsSlowAndUnreadable) {
  read_practice_disk();
  for (const int scale : {1, 2}) {
    const Canvas canvas = painted({464 * scale, 216 * scale}, 96 * scale);
    // A transfer of 20480 sectors is a hundredth of the disk.
    EXPECT_THAT(marks(canvas, Mark::triangle), ::testing::ElementsAre(::testing::DoubleNear(kSlow / kSectors, 0.01)));
    EXPECT_THAT(marks(canvas, Mark::cross),
                ::testing::ElementsAre(::testing::DoubleNear(kUnreadable / kSectors, 0.01)));
    EXPECT_THAT(texts(canvas),
                ::testing::IsSupersetOf({"MB/s", "slow: 2", "stalled: 2", "errors: 1", "0.2 GB", "100"}));
  }
}

TEST_F(PanelPicture, TheLineFallsWithTheDiskAndDipsAtItsSlowZone) {
  read_practice_disk();
  const Canvas canvas = painted();
  std::vector<Point> line;
  for (const Drawn& drawn : canvas.drawn) {
    if (drawn.what == Drawn::What::polyline && drawn.points.size() > 10)
      line.insert(line.end(), drawn.points.begin(), drawn.points.end());
  }
  ASSERT_FALSE(line.empty());
  EXPECT_LT(line.front().y, line.back().y);
  const auto lowest = std::max_element(line.begin(), line.end(), [](Point a, Point b) { return a.y < b.y; });
  EXPECT_NEAR(static_cast<double>(lowest->x - panel.plot.x) / panel.plot.width, kSlow / kSectors, 0.015);
}

TEST_F(PanelPicture, RandomTestsArePoints) {
  open("/VDISK:0=DEMO");
  begin_measuring({.kind = RunKind::random_read, .sectors = 1000, .work = 2});
  measure_transfer({.lba = 100, .sectors = 256, .start = 1.0, .end = 1.1});
  measure_transfer({.lba = 900, .sectors = 256, .start = 2.0, .end = 2.05});
  const Canvas canvas = painted();
  const auto plotted = std::find_if(canvas.drawn.rbegin(), canvas.drawn.rend(),
                                    [](const Drawn& drawn) { return drawn.what == Drawn::What::dots; });
  ASSERT_NE(plotted, canvas.drawn.rend());
  const auto share = [](Point dot) { return static_cast<double>(dot.x - panel.plot.x) / panel.plot.width; };
  ASSERT_EQ(plotted->points.size(), 2U);
  EXPECT_NEAR(share(plotted->points[0]), 0.1, 0.01);
  EXPECT_NEAR(share(plotted->points[1]), 0.9, 0.01);
  EXPECT_LT(plotted->points[1].y, plotted->points[0].y);
}

TEST_F(PanelPicture, HoveringTellsAndADoubleClickTakesTheStart) {
  read_practice_disk();
  painted();
  const Point slow = in_plot(kSlow / kSectors);
  const std::uint64_t before = kPanelPicture.revision();
  kPanelPicture.on_hover(&slow);
  EXPECT_NE(kPanelPicture.revision(), before);
  EXPECT_THAT(texts(painted()), Contains(StartsWith("LBA 124")));
  EXPECT_THAT(kPanelPicture.description(), ::testing::AllOf(HasSubstr(" MB/s ("), HasSubstr(" ms")));
  kPanelPicture.on_double_click(slow);
  EXPECT_NEAR(std::stod(form1.TxtStartLBA.text()), kSlow, 6000.0);
  EXPECT_TRUE(form1.RangeEdited);
}

TEST_F(PanelPicture, ADoubleClickOnAMarkTakesItsSectors) {
  read_practice_disk();
  run_findings.bad = {};
  for (const auto view : {graph_tab_click, map_tab_click}) {
    view();
    painted();
    const bool graph = panel.view == PanelView::rate_graph;
    const auto whole = range_after(graph ? mark_of(true) : in_cell(kUnreadable));
    EXPECT_TRUE(whole.first <= kUnreadable && whole.second > kUnreadable && whole.second < kUnreadable + 30000.0);
    const auto slow = range_after(graph ? mark_of(false) : in_cell(kSlow + 5000.0));
    EXPECT_TRUE(slow.first <= kSlow + 5000.0 && slow.second > kSlow && slow.second < kSlow + 30000.0);
    // Once it is known exactly: from the first bad sector to the last one there.
    run_findings.bad = {{.first_lba = 624000, .sectors = 8}, {.first_lba = 624100, .sectors = 2}};
    EXPECT_EQ(range_after(graph ? mark_of(true) : in_cell(kUnreadable)), std::pair(624000.0, 624102.0));
    run_findings.bad = {};
    range("0", "77");
    kPanelPicture.on_double_click(graph ? in_plot(0.1) : in_cell(0.1 * kSectors));
    EXPECT_NEAR(std::stod(form1.TxtStartLBA.text()), 0.1 * kSectors, 6000.0);
    EXPECT_EQ(form1.TxtNoSecs.text(), "77") << "nothing is wrong there";
  }
}

TEST_F(PanelPicture, AMarkNamesItsSectorsAndWhatADoubleClickTakes) {
  read_practice_disk();
  run_findings.bad = {{.first_lba = 624000, .sectors = 8},
                      {.first_lba = 624010, .sectors = 1, .kind = BadKind::slow, .milliseconds = 1199.6},
                      {.first_lba = 624020, .sectors = 1},
                      {.first_lba = 624030, .sectors = 1},
                      {.first_lba = 624040, .sectors = 1}};
  const std::string sectors =
      "unreadable: LBA 624000 to 624007, slow: LBA 624010, 1200 ms, unreadable: LBA 624020, "
      "and 2 more";
  EXPECT_EQ(kPanelPicture.description(), "Rate graph, " + sectors);
  painted({732, 80});
  const Point stretch{mark_of(true).x, panel.plot.y + panel.plot.height - 1};
  kPanelPicture.on_hover(&stretch);
  EXPECT_THAT(kPanelPicture.description(), HasSubstr(sectors + ", double click: start LBA 62"));
  const Point mark = mark_of(true);
  kPanelPicture.on_hover(&mark);
  EXPECT_THAT(kPanelPicture.description(), HasSubstr(sectors + ", double click: range LBA 624000 to 624040"));
  for (const Drawn& drawn : painted({732, 80}).drawn) {
    EXPECT_TRUE(drawn.place.y >= 0 && drawn.place.y + drawn.place.height <= 80) << drawn.text;
  }
  form1.command_running = true;
  EXPECT_THAT(kPanelPicture.description(), ::testing::Not(HasSubstr("double click")));
}

TEST_F(PanelPicture, SharesTheReportsPlaceWhereItHasNone) {
  read_practice_disk();
  const auto tabs = [] { return std::vector{panel.report_tab.on(), panel.graph_tab.on(), panel.map_tab.on()}; };
  map_tab_click();
  EXPECT_FALSE(panel_in_front(false)) << "the report is seen first";
  EXPECT_EQ(tabs(), (std::vector{true, false, false}));
  graph_tab_click();
  EXPECT_TRUE(panel_in_front(false));
  EXPECT_EQ(tabs(), (std::vector{false, true, false}));
  click(CmdRead_Click);
  EXPECT_TRUE(panel_in_front(false));
  click(CmdDisplay_Click);
  EXPECT_FALSE(panel_in_front(false));
  EXPECT_FALSE(panel_in_front(true));
  EXPECT_EQ(tabs(), (std::vector{false, true, false}));
}

TEST_F(PanelPicture, BytesToLookAtBringTheReportForward) {
  read_practice_disk();
  range("0", "1");
  headless::desktop.otherwise = "CANCEL";
  for (const auto press : {CmdDisplay_Click, cmdWriteBuffer_Click, CmdFillBuffer_Click}) {
    form1.report_in_front = false;
    click(press);
    EXPECT_TRUE(form1.report_in_front);
  }
  form1.report_in_front = false;
  headless::desktop.answers = {"H55AA"};
  click(CmdFind_Click);
  EXPECT_TRUE(form1.report_in_front);
}

TEST_F(PanelPicture, ARunningCommandKeepsItsStart) {
  read_practice_disk();
  painted();
  form1.command_running = true;
  kPanelPicture.on_double_click(in_plot(0.5));
  EXPECT_EQ(form1.TxtStartLBA.text(), "0");
}

TEST_F(PanelPicture, TheBlockMapShowsTheWorstOfEachCell) {
  read_practice_disk();
  map_tab_click();
  EXPECT_TRUE(panel.map_tab.on() && !panel.graph_tab.on());
  const Canvas canvas = painted();
  EXPECT_THAT(texts(canvas), ::testing::IsSupersetOf({"error: 1", ">= 500 ms: 2", "< 150 ms: 0", "beyond usual:"}));
  const auto color_at = [&](double lba) {
    const auto cell = static_cast<std::int64_t>(lba / kSectors * static_cast<double>(panel.grid.cells));
    const platform::Rect place = place_of_cell(panel.grid, cell);
    const auto drawn = std::find_if(canvas.drawn.begin(), canvas.drawn.end(), [&](const Drawn& one) {
      return one.what == Drawn::What::fill && one.place.x == place.x && one.place.y == place.y;
    });
    EXPECT_EQ(cell_at(panel.grid, {place.x, place.y}), cell);
    return drawn->pen.color;
  };
  EXPECT_EQ(color_at(kUnreadable), (platform::Color{0, 0, 0}));
  EXPECT_NE(color_at(kSlow), color_at(0.0));
  EXPECT_EQ(color_at(0.0), color_at(kSectors - 1.0));
}

TEST_F(PanelPicture, EverythingStaysOnTheCanvasAndInHighContrastInSystemColours) {
  read_practice_disk();
  const platform::Color green{0, 255, 0};
  for (const platform::Size size : {platform::Size{464, 216}, {732, 80}, {1800, 216}}) {
    for (const auto click_view : {graph_tab_click, map_tab_click}) {
      click_view();
      const Canvas canvas = painted(size, 96, {{0, 0, 0}, green, {0, 0, 0}, green, true});
      for (const Drawn& drawn : canvas.drawn) {
        EXPECT_TRUE(drawn.pen.color.red == 0 && drawn.pen.color.blue == 0);
        for (const Point point : drawn.points) EXPECT_TRUE(point.x >= 0 && point.x <= size.width) << point.x;
      }
    }
  }
}

TEST_F(PanelPicture, ProgressSaysPhaseShareAndTimeLeft) {
  open("/VDISK:0=DEMO");
  EXPECT_EQ(progress_words().what, "");
  begin_measuring({.kind = RunKind::write, .sectors = 1000});
  measure_transfer({.wrote = true, .sectors = 250, .start = 1.0, .end = 31.0});
  EXPECT_EQ(progress_words().what, "writing 25%");
  EXPECT_EQ(progress_words().left, "1:30 left");
  EXPECT_DOUBLE_EQ(progress_share().done, 0.25);
  end_measuring(true);
  EXPECT_EQ(progress_words().what, "stopped at 25%");
  end_measuring(false);
  EXPECT_EQ(progress_words().what, "stopped at 25%") << "a command that transfers nothing changes nothing";
}

TEST_F(PanelPicture, ASearchThatFindsIsNotStopped) {
  open("/VDISK:0=DEMO");
  headless::desktop.answers = {"H55AA"};
  click(CmdFind_Click);
  EXPECT_LT(progress_share().done, 1.0);
  EXPECT_EQ(progress_words().what, "finished");
}

TEST_F(PanelPicture, TheBarIsAsLongAsTheShareDone) {
  begin_measuring({.kind = RunKind::read, .sectors = 1000});
  measure_transfer({.sectors = 500, .start = 1.0, .end = 2.0});
  Canvas canvas{{202, 34}, 96, {}, {}};
  kProgressPicture.paint(&canvas);
  EXPECT_EQ(canvas.drawn.back().place.width, 100);
}

}  // namespace
