// What stands between a press and a write in the shipped program, and what a start does behind a program that was
// killed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

#include "tests/window/program.h"

namespace {

constexpr int kSectors = 4096;

std::string read_file(const std::string& name) {
  std::ostringstream contents;
  contents << std::ifstream(name, std::ios::binary).rdbuf();
  return contents.str();
}

/// An image whose sectors are numbered, and the disk file "w.vd" for it.
std::string make_disk(const std::string& directives) {
  std::string image;
  for (int lba = 0; lba < kSectors; ++lba) {
    std::string sector = std::to_string(lba) + " ";
    while (sector.size() < 512) sector += sector;
    image += sector.substr(0, 512);
  }
  write_file("w.img", image);
  write_file("w.vd", "image w.img\nserial W1\nmodel Written disk\n" + directives);
  return image;
}

std::string text_of_box(HWND box) {
  std::string all;
  for (HWND child = ::GetWindow(box, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT)) {
    if (class_of(child) == "Static") all += text_of(child);
  }
  return all;
}

void answer(const Program& program, HWND box, int button) {
  ::PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
  EXPECT_TRUE(wait_until([&] { return ::IsWindow(box) == FALSE; }));
  program.answer_time();
}

bool idle(const Program& program) {
  return enabled(program.button("Sequential READ"));
}

TEST(Writes, TheCaptionTellsAWindowThatDoesNotAsk) {
  make_disk("");
  const Program program("/D:0 /VDISK:0=w.vd");
  const std::string mark = " - COMMAND-LINE MODE: writes without asking";
  EXPECT_TRUE(wait_until([&] { return text_of(program.window()).ends_with(mark); }));
  program.press("Cancel");
  EXPECT_TRUE(wait_until([&] { return !text_of(program.window()).ends_with(mark); }));
}

TEST(Writes, TheQuestionNamesTheDiskAndEnterMeansCancel) {
  const std::string image = make_disk("");
  const Program program("/VDISK:0=w.vd /START:7 /COUNT:3");
  program.press("Fill Buffer with Pattern and WRITE");
  HWND const box = program.wait_for_box("WIPE DRIVE?");
  ASSERT_NE(box, nullptr);
  const std::string text = text_of_box(box);
  EXPECT_EQ(text.rfind("Warning: This Disk 0 Write operation will overwrite all existing data!", 0), 0U) << text;
  for (const char* fact : {"Model: Written disk", "Serial number: W1", "Size: 4096 sectors, 2Mb", "Virtual disk: w.vd",
                           "LBA 7 to 9, 3 sectors"}) {
    EXPECT_NE(text.find(fact), std::string::npos) << fact;
  }
  program.key(VK_RETURN);
  EXPECT_TRUE(wait_until([&] { return ::IsWindow(box) == FALSE; }));
  EXPECT_TRUE(wait_until([&] { return idle(program); }));
  EXPECT_TRUE(read_file("w.img") == image);
}

TEST(Writes, TheQuestionsCheckBoxHasTheWriteReadBackAndStaysAsItWasLeft) {
  make_disk("drop 8 1\n");
  const Program program("/VDISK:0=w.vd /START:7 /COUNT:3");
  program.press("Fill Buffer with Pattern and WRITE");
  HWND box = program.wait_for_box("WIPE DRIVE?");
  ASSERT_NE(box, nullptr);
  const auto part = [&](const char* caption) { return ::FindWindowExA(box, nullptr, "BUTTON", caption); };
  const auto tab_to = [&](const char* caption) {
    program.key(VK_TAB);
    EXPECT_TRUE(wait_until([&] { return program.focus() == part(caption); })) << caption;
  };
  const char* const kCheckBox = "&Read back and compare afterwards";
  EXPECT_TRUE(wait_until([&] { return program.focus() == part("Cancel"); }));
  EXPECT_FALSE(checked(part(kCheckBox)));
  EXPECT_FALSE(enabled(program.window()));
  tab_to(kCheckBox);
  program.key(VK_SPACE);
  EXPECT_TRUE(wait_until([&] { return checked(part(kCheckBox)); }));
  tab_to("OK");
  program.key(VK_RETURN);
  EXPECT_TRUE(wait_until([&] {
    return text_of(program.edit(kText)).find("VERIFY: 1 of 1 chunks differs, first difference at LBA 8 byte 0.") !=
           std::string::npos;
  }));
  EXPECT_TRUE(wait_until([&] { return idle(program); }));

  const std::string written = read_file("w.img");
  program.press("Fill Buffer with Pattern and WRITE");
  box = program.wait_for_box("WIPE DRIVE?");
  EXPECT_TRUE(checked(part(kCheckBox)));
  program.set_focus(part(kCheckBox));
  program.key(VK_RETURN);
  EXPECT_TRUE(wait_until([&] { return idle(program); }));
  EXPECT_FALSE(program.box_is_open()) << "Enter on the check box means Cancel";
  program.press("Fill Buffer with Pattern and WRITE");
  box = program.wait_for_box("WIPE DRIVE?");
  program.key(VK_ESCAPE);
  EXPECT_TRUE(wait_until([&] { return idle(program); }));
  EXPECT_TRUE(read_file("w.img") == written);
}

TEST(Writes, AStartThatIsNoNumberStopsBeforeTheQuestion) {
  const std::string image = make_disk("");
  const Program program("/VDISK:0=w.vd");
  set_text(program.edit(kStart), "1,000");
  program.press("Fill Buffer with Pattern and WRITE");
  HWND const box = program.wait_for_box("Sectorix");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(text_of_box(box),
            "Start: \"1,000\" is not a plain decimal number. Nothing was written; please correct it.");
  answer(program, box, IDOK);
  EXPECT_TRUE(wait_until([&] { return idle(program); }));
  EXPECT_FALSE(program.box_is_open());
  EXPECT_TRUE(read_file("w.img") == image);
}

TEST(Writes, ADriveOnWhichAnotherProgramWritesIsRefused) {
  const std::string image = make_disk("");
  char path[MAX_PATH];
  ::GetFullPathNameA("w.img", MAX_PATH, path, nullptr);
  std::string name = path;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return c == '\\' ? '/' : static_cast<char>(std::toupper(c)); });
  HANDLE const held = ::CreateMutexA(nullptr, FALSE, ("Global\\Sectorix-" + name).c_str());
  ASSERT_NE(held, nullptr);
  const Program program("/VDISK:0=w.vd /D:0");
  program.press("Fill Buffer with Pattern and WRITE");
  HWND const box = program.wait_for_box("Sectorix");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(text_of_box(box), "Another Sectorix is writing to drive 0: nothing was done.");
  answer(program, box, IDOK);
  EXPECT_TRUE(wait_until([&] { return idle(program); }));
  EXPECT_TRUE(read_file("w.img") == image);
  ::CloseHandle(held);
  program.press("Fill Buffer with Pattern and WRITE");
  EXPECT_TRUE(wait_until([&] { return read_file("w.img") != image; }));
}

TEST(Writes, AKilledTestIsGivenBackByTheNextStart) {
  const std::string image = make_disk("slow 0 4096 40\n");
  ::CreateDirectoryA("undo", nullptr);
  {
    const Program program("/VDISK:0=w.vd /D:0 /COUNT:64 /PASSES:1000 /JOURNAL:undo");
    program.press("Non-Destructive Random WRITE");
    ASSERT_TRUE(wait_until([&] { return read_file("w.img") != image; }));
  }
  ASSERT_FALSE(read_file("w.img") == image) << "killed between the pattern and giving back";
  const Program program("/VDISK:0=w.vd /JOURNAL:undo");
  HWND const box = program.wait_for_box("INTERRUPTED TEST");
  ASSERT_NE(box, nullptr);
  EXPECT_NE(text_of_box(box).find(" of drive 0 (Written disk, serial number W1): "), std::string::npos);
  answer(program, box, IDOK);
  EXPECT_TRUE(wait_until([&] { return read_file("w.img") == image; }));
  EXPECT_TRUE(wait_until(
      [&] { return text_of(program.edit(kText)).find("were given back and read again") != std::string::npos; }));
  EXPECT_EQ(::GetFileAttributesA("undo\\sectorix-W1.journal"), INVALID_FILE_ATTRIBUTES);
}

}  // namespace
