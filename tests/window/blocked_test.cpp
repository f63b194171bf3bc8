// A drive that does not answer: the window does, says what it waits for, and takes presses.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <vector>

#include "tests/window/program.h"

namespace {

constexpr const char* kRead = "Sequential READ";
constexpr const char* kWrite = "Fill Buffer with Pattern and WRITE";

/// Every transfer of this disk takes `milliseconds`. Its contents lie in "blocked.img".
std::string blocking_disk(int milliseconds) {
  std::string contents;
  for (int sector = 0; sector < 400; ++sector) contents += std::string(512, static_cast<char>('A' + sector % 26));
  write_file("blocked.img", contents);
  write_file("blocked.vd", "image blocked.img\nslow 0 400 " + std::to_string(milliseconds) + "\n");
  return "/VDISK:0=blocked.vd";
}

std::string image() {
  std::ostringstream contents;
  contents << std::ifstream("blocked.img", std::ios::binary).rdbuf();
  return contents.str();
}

bool shows(const Program& program, std::size_t edit, const std::string& text) {
  return text_of(program.edit(edit)).find(text) != std::string::npos;
}

void answer(const Program& program, const std::string& title, int button) {
  HWND const box = program.wait_for_box(title);
  ASSERT_NE(box, nullptr) << title;
  ::PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
  ASSERT_TRUE(wait_until([&] { return ::IsWindow(box) == FALSE; }));
}

/// A command and how it gets to its first transfer.
struct Command {
  const char* name;
  const char* button;
  std::vector<std::pair<const char*, int>> boxes;  // title and answer
  bool writes;                                     // with its first transfer
};

const std::vector<Command>& commands() {
  static const std::vector<Command> all = {
      {"read", kRead, {}, false},
      {"write", kWrite, {{"WIPE DRIVE?", IDOK}}, true},
      {"random read", "Random READ", {{"Sectorix", IDOK}, {"Sectorix", IDOK}}, false},
      {"search", "Search Disk", {{"Enter search letter or value", IDOK}}, false},
      {"random write", "Non-Destructive Random WRITE", {{"Sectorix", IDOK}, {"Sectorix", IDOK}}, false},
  };
  return all;
}

void start(const Program& program, const Command& command) {
  program.press(command.button);
  for (const auto& [title, button] : command.boxes) {
    HWND const box = program.wait_for_box(title);
    ASSERT_NE(box, nullptr) << command.name;
    HWND const edit = ::FindWindowExA(box, nullptr, "EDIT", nullptr);
    if (edit != nullptr) set_text(edit, command.button == std::string("Search Disk") ? "tnowhere" : "10");
    answer(program, title, button);
  }
}

/// Milliseconds that the window takes to answer while it is moved, repainted, scrolled and hovered over for a second.
std::vector<double> answers_while_used(const Program& program) {
  std::vector<double> times;
  HWND const window = program.window();
  const ULONGLONG end = ::GetTickCount64() + 1000;
  for (int i = 0; ::GetTickCount64() < end; ++i) {
    const int width = 1000 + i % 7 * 20;
    ::SetWindowPos(window, nullptr, 10 + i % 5, 10, width, 700, SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
    for (HWND child : program.children()) {
      if (class_of(child) == "SectorixPicture") ::PostMessageA(child, WM_MOUSEMOVE, 0, MAKELPARAM(60 + i % 50, 40));
    }
    ::PostMessageA(program.edit(kText), EM_LINESCROLL, 0, i % 2 == 0 ? 1 : -1);
    times.push_back(program.answer_time());
    ::Sleep(15);
  }
  return times;
}

/// Milliseconds within which a window answers that no drive holds up: on a busy machine as long as it takes at rest,
/// which is before a command.
struct Limits {
  double usual = 100.0;
  double worst = 300.0;
};

Limits limits_of(const Program& program) {
  const std::vector<double> at_rest = answers_while_used(program);
  const double slowest = *std::max_element(at_rest.begin(), at_rest.end());
  const Limits quick;
  return {std::max(quick.usual, 2 * slowest), std::max(quick.worst, 3 * slowest)};
}

TEST(Blocked, TheWindowAnswersWhateverTheCommand) {
  for (const Command& command : commands()) {
    const Program program(blocking_disk(15000));
    const Limits limits = limits_of(program);
    start(program, command);
    ASSERT_TRUE(wait_until([&] { return shows(program, kStatus, "waiting for "); }))
        << command.name << ": " << text_of(program.edit(kStatus));
    EXPECT_TRUE(shows(program, kStatus, command.writes ? " and writing " : " and reading ")) << command.name;
    EXPECT_TRUE(shows(program, kStatus, "At sector " + text_of(program.edit(kCurrent)) + " and ")) << command.name;
    EXPECT_TRUE(answers_within(limits.usual, limits.worst, [&] { return answers_while_used(program); }))
        << command.name;
    EXPECT_TRUE(shows(program, kStatus, "waiting for ")) << "the same transfer still";
  }
}

TEST(Blocked, TheWindowAnswersWhileTheDriveIsAskedWhatItIs) {
  write_file("quick.vd", "sectors 100\n");
  write_file("mute.vd", "sectors 400\nsmart 5 3 100 100 36 0\nvolume Q:\nrequests 1600\n");
  const Program program("/VDISK:0=quick.vd /VDISK:1=mute.vd");
  const Limits limits = limits_of(program);
  const auto waits = [&](const char* during) {
    ASSERT_TRUE(wait_until([&] { return shows(program, kStatus, "waiting for "); })) << during;
    EXPECT_TRUE(answers_within(limits.usual, limits.worst, [&] { return answers_while_used(program); })) << during;
  };
  program.press("Drive 1");
  waits("identification");
  ASSERT_TRUE(wait_until([&] { return text_of(program.edit(kCount)) == "400"; }));
  start(program, commands()[1]);
  waits("volume locks and SMART");
}

TEST(Blocked, ASecondCancelGivesAReadUp) {
  for (const Command& command : commands()) {
    if (command.writes) continue;
    const Program program(blocking_disk(30000));
    start(program, command);
    ASSERT_TRUE(wait_until([&] { return shows(program, kStatus, "waiting for "); })) << command.name;
    program.press("Cancel");
    EXPECT_TRUE(wait_until([&] {
      return shows(program, kStatus, "Cancelling after this transfer: the drive has not answered for ") &&
             shows(program, kStatus, "Cancel again gives the read up");
    })) << command.name;
    EXPECT_FALSE(enabled(program.button(kRead)));
    const ULONGLONG pressed = ::GetTickCount64();
    program.press("Cancel");
    EXPECT_TRUE(wait_until([&] { return enabled(program.button(kRead)); })) << command.name;
    EXPECT_LT(::GetTickCount64() - pressed, 10000U) << command.name;
    const std::string report = text_of(program.edit(kText));
    EXPECT_EQ(report.find("ERROR:"), std::string::npos) << report;
    if (command.name != std::string("search")) EXPECT_NE(report.find("SET QV_D_TOTERR=0"), std::string::npos) << report;
  }
}

TEST(Blocked, AWriteIsNeverGivenUp) {
  const Program program(blocking_disk(4000));
  start(program, commands()[1]);
  ASSERT_TRUE(wait_until([&] { return shows(program, kStatus, "waiting for "); }));
  for (int i = 0; i < 3; ++i) program.press("Cancel");
  EXPECT_TRUE(wait_until([&] { return shows(program, kStatus, "Cancelling after this transfer: "); }));
  EXPECT_FALSE(shows(program, kStatus, "gives the read up"));
  EXPECT_TRUE(wait_until([&] { return enabled(program.button(kRead)); }));
  EXPECT_EQ(image(), [] {
    std::string pattern;
    while (pattern.size() < 400 * 512) pattern += "\x2C\x2C\xAA\x55";
    return pattern;
  }()) << "the one transfer was made";
}

TEST(Blocked, PressesAreTakenAtOnceAndDoneAfterwards) {
  write_file("other.vd", "sectors 1000\nmodel Other\n");
  const Program program(blocking_disk(4000) + " /VDISK:1=other.vd");
  start(program, commands()[0]);
  ASSERT_TRUE(wait_until([&] { return shows(program, kStatus, "waiting for "); }));
  program.press("Drive 1");
  EXPECT_TRUE(wait_until([&] { return shows(program, kStatus, "Cancelling after this transfer: "); }));
  EXPECT_TRUE(wait_until([&] { return shows(program, kStatus, "Drive 1  - Other"); }));
  EXPECT_TRUE(checked(program.button("Drive 1")));
}

TEST(Blocked, ClosingInAVisitWaitsUntilTheDiskHasItsContentsBack) {
  const Program program(blocking_disk(2500));
  const std::string before = image();
  start(program, commands()[4]);
  ASSERT_TRUE(wait_until([&] { return shows(program, kStatus, " and writing "); }));
  EXPECT_EQ(::SendMessageA(program.window(), WM_QUERYENDSESSION, 0, 0), 0) << "the session is held";
  ::PostMessageA(program.window(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(wait_until([&] { return shows(program, kStatus, "The disk gets its contents back first."); }));
  HWND const box = program.wait_for_box("Sectorix");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(program.exit_code(), 1U);
  EXPECT_EQ(image(), before);
}

TEST(Blocked, ExitGivesAReadUp) {
  const Program program(blocking_disk(30000));
  start(program, commands()[0]);
  ASSERT_TRUE(wait_until([&] { return shows(program, kStatus, "waiting for "); }));
  const ULONGLONG pressed = ::GetTickCount64();
  program.press("Exit");
  EXPECT_EQ(program.exit_code(), 1U);
  EXPECT_LT(::GetTickCount64() - pressed, 10000U);
}

}  // namespace
