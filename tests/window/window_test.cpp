#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "tests/window/program.h"

namespace {

constexpr const char* kPractice = "/VDISK:0=DEMO";

/// Two small disks, and a slow one whose whole read takes many seconds.
std::string three_disks() {
  write_file("small.vd", "sectors 1000000\nmodel Small disk\n");
  write_file("slow.vd", "sectors 4000000\nmodel Slow disk\nrate 60\n");
  return "/VDISK:0=DEMO /VDISK:1=small.vd /VDISK:2=slow.vd";
}

/// The command has ended: this button is the first to come back, and the window answers when the rest has followed.
bool idle(const Program& program) {
  if (!enabled(program.button("Sequential READ"))) return false;
  program.answer_time();
  return true;
}

bool busy(const Program& program) {
  return !idle(program);
}

void start_slow_read(const Program& program) {
  program.press("Drive 2");
  ASSERT_TRUE(wait_until([&] { return text_of(program.edit(kCount)) == "4000000"; }));
  program.press("Sequential READ");
  ASSERT_TRUE(wait_until(
      [&] { return busy(program) && text_of(program.edit(kStatus)).find(" sectors in ") != std::string::npos; }));
}

TEST(Start, ShowsEveryControl) {
  const Program program(kPractice);
  for (const char* caption : {"Sequential READ",
                              "Random READ",
                              "Search Disk",
                              "Non-Destructive Random WRITE",
                              "Set Slow Xfer Limit",
                              "Cancel",
                              "Help",
                              "Exit",
                              "  Sector Edit Functions ",
                              "Display and Edit Buffer",
                              "WRITE using Buffer",
                              "Fill Buff",
                              "Fill Buffer with Pattern and WRITE",
                              "Drive 0",
                              "Drive 1",
                              "Drive 2",
                              "Drive 3",
                              "Drive 4",
                              "Drive 5",
                              "Drive 6",
                              "Drive 7"}) {
    EXPECT_NE(program.button(caption), nullptr) << caption;
  }
  for (const char* label : {"Start (0-2097151)", "No. Sectors", "Current LBA", " Fill Pattern (hex)"}) {
    EXPECT_NE(program.find("STATIC", label), nullptr) << label;
  }
  EXPECT_EQ(text_of(program.edit(kStart)), "0");
  EXPECT_EQ(text_of(program.edit(kCount)), "2097152");
  EXPECT_EQ(text_of(program.edit(kPattern)), "2C2CAA55");
  EXPECT_EQ(text_of(program.edit(kText)).rfind("    WARNING: Drive 0  - ", 0), 0U);
  EXPECT_TRUE(checked(program.button("Drive 0")));
  EXPECT_TRUE(read_only(program.edit(kStatus)) && read_only(program.edit(kCurrent)));
}

TEST(Drives, PressingSelectsAndShowsTheDrive) {
  const Program program(three_disks());
  program.press("Drive 1");
  EXPECT_TRUE(wait_until([&] { return text_of(program.edit(kStatus)) == "Drive 1  - Small disk  488Mb"; }));
  EXPECT_NE(program.find("STATIC", "Start (0-999999)"), nullptr);
  EXPECT_TRUE(checked(program.button("Drive 1")) && !checked(program.button("Drive 0")));
  program.press("Drive 5");
  EXPECT_TRUE(wait_until([&] { return text_of(program.edit(kStatus)) == "Drive 5 not found!"; }));
}

TEST(Drives, ArrowKeysSelectAndFocusAloneDoesNot) {
  const Program program(three_disks());
  program.set_focus(program.button("Drive 0"));
  program.key(VK_RIGHT);
  EXPECT_TRUE(wait_until([&] { return text_of(program.edit(kStatus)) == "Drive 1  - Small disk  488Mb"; }));
  program.set_focus(program.edit(kStart));
  program.set_focus(program.button("Drive 0"));
  ::Sleep(100);
  EXPECT_TRUE(checked(program.button("Drive 1")));
  EXPECT_EQ(text_of(program.edit(kStatus)), "Drive 1  - Small disk  488Mb");
}

TEST(Drives, ClickingIntoATextChangesNothing) {
  const Program program(three_disks());
  const auto before = program.contents();
  for (const std::size_t edit : {kStart, kCount, kCurrent, kPattern, kStatus, kText}) {
    ::PostMessageA(program.edit(edit), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4));
    ::PostMessageA(program.edit(edit), WM_LBUTTONUP, 0, MAKELPARAM(4, 4));
    EXPECT_TRUE(wait_until([&] { return program.focus() == program.edit(edit); }));
  }
  EXPECT_EQ(program.contents(), before);
}

TEST(Read, FromTheButtonToTheReport) {
  const Program program(kPractice);
  program.set_focus(program.edit(kStart));
  ::SendMessageA(program.edit(kStart), EM_SETSEL, 0, -1);
  program.type("4096");
  ASSERT_TRUE(wait_until([&] { return text_of(program.edit(kStart)) == "4096"; }));
  set_text(program.edit(kCount), "30000");
  program.press("Sequential READ");
  ASSERT_TRUE(wait_until([&] { return text_of(program.edit(kText)).find("Finished!") != std::string::npos; }));
  const std::string report = text_of(program.edit(kText));
  EXPECT_EQ(report.rfind("Reading 30000 sectors starting at LBA 4096 on drive 0\r\n", 0), 0U) << report;
  EXPECT_NE(report.find(" seconds for 30000 sectors."), std::string::npos);
  EXPECT_TRUE(wait_until([&] { return idle(program); }));
}

TEST(Read, CancelStopsItAndGivesTheButtonsBack) {
  const Program program(three_disks());
  program.set_focus(program.button("Sequential READ"));
  start_slow_read(program);
  for (const char* caption : {"Cancel", "Exit", "Help", "Set Slow Xfer Limit", "Drive 3"}) {
    EXPECT_TRUE(enabled(program.button(caption))) << caption;
  }
  for (const std::size_t edit : {kStart, kCount, kPattern, kText}) EXPECT_TRUE(read_only(program.edit(edit)));
  EXPECT_EQ(program.focus(), program.button("Cancel"));
  program.access_key('r');  // the command's own button: nothing
  program.access_key('c');
  EXPECT_TRUE(wait_until([&] { return idle(program); }));
  for (const std::size_t edit : {kStart, kCount, kPattern, kText}) EXPECT_FALSE(read_only(program.edit(edit)));
  EXPECT_EQ(program.focus(), program.button("Sequential READ"));
  EXPECT_LT(std::atoll(text_of(program.edit(kCurrent)).c_str()), 4000000);
}

TEST(Read, TheRateIsReadableAllTheTime) {
  write_file("paced.vd", "sectors 4000000\nrate 60\n");
  write_file("quick.vd", "sectors 40000000\nrate 800\n");
  for (const char* disk : {"/VDISK:0=paced.vd", "/VDISK:0=quick.vd"}) {
    const Program program(disk);
    program.press("Sequential READ");
    ASSERT_TRUE(wait_until([&] { return text_of(program.edit(kStatus)).find(" sectors in ") != std::string::npos; }));
    for (int glance = 0; glance < 30; ++glance) {
      const std::string status = text_of(program.edit(kStatus));
      ASSERT_NE(status.find(" sectors in "), std::string::npos) << disk << ": " << status;
      ::Sleep(50);
    }
  }
}

TEST(Read, APressOnALockedButtonIsNotKeptForLater) {
  write_file("slow_end.vd", "sectors 1000\nslow 0 1 1500\n");
  const Program program("/VDISK:0=slow_end.vd");
  program.press("Sequential READ");
  ASSERT_TRUE(wait_until([&] { return !enabled(program.button("Sequential READ")); }));
  HWND const write = program.button("Fill Buffer with Pattern and WRITE");
  ::PostMessageA(write, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4));
  ::PostMessageA(write, WM_LBUTTONUP, 0, MAKELPARAM(4, 4));
  ASSERT_TRUE(wait_until([&] { return idle(program); }));
  ::Sleep(300);
  EXPECT_FALSE(program.box_is_open());
  EXPECT_EQ(text_of(program.edit(kText)).find("Writing"), std::string::npos);
}

TEST(Read, TheWindowAnswersMeanwhile) {
  write_file("large.vd", "sectors 4000000000\n");
  const Program program("/VDISK:0=large.vd");
  HWND const read = program.button("Sequential READ");
  program.press("Sequential READ");
  ASSERT_TRUE(wait_until([&] { return !enabled(read); }));
  constexpr double kUsual = 50.0;  // milliseconds
  constexpr double kWorst = 300.0;
  EXPECT_TRUE(answers_within(kUsual, kWorst, [&] {
    std::vector<double> times(40);
    for (double& time : times) {
      ::Sleep(20);
      time = program.answer_time();
    }
    return times;
  }));
  EXPECT_FALSE(enabled(read));
}

TEST(Read, ADrivePressedMeanwhileIsSelectedAfterwards) {
  const Program program(three_disks());
  start_slow_read(program);
  program.press("Drive 1");
  EXPECT_TRUE(wait_until([&] { return idle(program) && checked(program.button("Drive 1")); }));
  EXPECT_TRUE(wait_until([&] { return program.find("STATIC", "Start (0-999999)") != nullptr; }));
}

void expect_end_after_a_second(const Program& program, const std::function<void()>& leave) {
  const auto start = std::chrono::steady_clock::now();
  leave();
  EXPECT_EQ(program.exit_code(), 1U);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  EXPECT_GE(taken.count(), 0.9);
  EXPECT_LT(taken.count(), 10.0);
}

TEST(Exit, EndsWithCodeOneAfterASecond) {
  const Program idle_program(kPractice);
  expect_end_after_a_second(idle_program, [&] { idle_program.press("Exit"); });
  const Program busy_program(three_disks());
  start_slow_read(busy_program);
  expect_end_after_a_second(busy_program, [&] { busy_program.press("Exit"); });
}

TEST(Exit, ClosingTheWindowDoesTheSame) {
  const Program idle_program(kPractice);
  expect_end_after_a_second(idle_program, [&] { ::PostMessageA(idle_program.window(), WM_CLOSE, 0, 0); });
  const Program busy_program(three_disks());
  start_slow_read(busy_program);
  expect_end_after_a_second(busy_program, [&] { ::PostMessageA(busy_program.window(), WM_CLOSE, 0, 0); });
}

TEST(Exit, TheSessionsEndDoesTheSame) {
  const Program program(kPractice);
  EXPECT_NE(::SendMessageA(program.window(), WM_QUERYENDSESSION, 0, 0), 0);
  EXPECT_TRUE(program.running());
  expect_end_after_a_second(program, [&] { ::PostMessageA(program.window(), WM_ENDSESSION, TRUE, 0); });
}

}  // namespace
