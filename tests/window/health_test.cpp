#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/window/program.h"

namespace {

HWND health_line(const Program& program) {
  for (HWND child : program.children()) {
    if (class_of(child) == "SectorixPicture" && text_of(child).rfind("Health: ", 0) == 0) return child;
  }
  return nullptr;
}

std::string health(const Program& program) {
  HWND const line = health_line(program);
  return line == nullptr ? std::string() : text_of(line);
}

bool says(const Program& program, const std::string& part) {
  return wait_until([&] { return health(program).find(part) != std::string::npos; });
}

void read(const Program& program, const std::string& start, const std::string& count) {
  set_text(program.edit(kStart), start);
  set_text(program.edit(kCount), count);
  program.press("Sequential READ");
}

TEST(HealthLine, SaysOfTheSelectedDriveWhatTheLastRunFound) {
  write_file("well.vd", "sectors 40000\nbus nvme\nmodel Well\nserial W1\n");
  const Program program("/VDISK:0=DEMO /VDISK:1=well.vd");
  ASSERT_TRUE(says(program, "Drive 0: its health is read with the next command."));
  read(program, "623000", "2000");
  EXPECT_TRUE(says(program, "Health: WORSE: pending sectors grew from 0 to 8"));
  program.press("Drive 1");
  EXPECT_TRUE(says(program, "Drive 1: its health is read with the next command."));
  read(program, "0", "20000");
  EXPECT_TRUE(says(program, "Health: GOOD: no sign of trouble in the health log and the run"));
  EXPECT_NE(text_of(program.edit(kText)).find("SET QV_H_VERDICT=GOOD"), std::string::npos);
}

TEST(HealthLine, ThePageOfTheLastRunIsSavedWhereTheUserSays) {
  ::DeleteFileA("saved.html");
  const Program program("/VDISK:0=DEMO");
  read(program, "623000", "2000");
  ASSERT_TRUE(says(program, "Health: WORSE"));
  program.choose("More...", 3);
  HWND const box = program.wait_for_box("SAVE THE RESULT AS A PAGE");
  ASSERT_NE(box, nullptr);
  set_text(::FindWindowExA(box, nullptr, "EDIT", nullptr), "saved.html");
  ::PostMessageA(box, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(wait_until([&] { return text_of(program.edit(kStatus)) == "Saved as saved.html"; }));
  std::ostringstream page;
  page << std::ifstream("saved.html", std::ios::binary).rdbuf();
  EXPECT_NE(page.str().find("<p class=\"verdict worse\">WORSE: "), std::string::npos);
  EXPECT_NE(page.str().find("</html>"), std::string::npos);
}

TEST(HealthLine, TheHistoryIsKeptWhereTheUserSays) {
  ::CreateDirectoryA("histories", nullptr);
  ::DeleteFileA("histories\\sectorix-PRACTICE-0001.jsonl");
  const Program program("/VDISK:0=DEMO");
  program.choose("More...", 2);
  HWND const box = program.wait_for_box("KEEP A HISTORY?");
  ASSERT_NE(box, nullptr);
  set_text(::GetWindow(box, GW_CHILD) == nullptr ? box : ::FindWindowExA(box, nullptr, "EDIT", nullptr), "histories");
  ::PostMessageA(box, WM_COMMAND, IDOK, 0);
  ASSERT_TRUE(wait_until([&] { return !program.box_is_open(); }));
  read(program, "0", "2000");
  ASSERT_TRUE(says(program, "Health: GOOD"));
  read(program, "623000", "2000");
  EXPECT_TRUE(says(program, "Health: WORSE"));
  EXPECT_TRUE(wait_until(
      [&] { return text_of(program.edit(kText)).find("Grown since: pending sectors 0 on ") != std::string::npos; }));
}

}  // namespace
