#include "tests/support/rig.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/program.h"
#include "form/form1.h"
#include "tests/support/state.h"
#include "virtualdisk/virtualdisk.h"

Rig::Rig() {
  std::filesystem::create_directories(path(""));
  std::filesystem::create_directories(local_data());
  ::setenv("LOCALAPPDATA", local_data().c_str(), 1);
}

Rig::~Rig() {
  virtualdisk::detach_all();
  std::filesystem::remove_all(path(""));
  std::filesystem::remove_all(local_data());
}

std::string Rig::local_data() {
  const std::string folder = path("");
  return folder.substr(0, folder.size() - 1) + "-local";
}

std::vector<std::string> Rig::journals() {
  std::vector<std::string> found;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(local_data())) {
    if (entry.is_regular_file()) found.push_back(entry.path().string());
  }
  return found;
}

std::string Rig::path(const std::string& name) {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  return ::testing::TempDir() + "sectorix-" + std::to_string(getpid()) + "-" + test->test_suite_name() + "-" +
         test->name() + "/" + name;
}

std::string Rig::write_file(const std::string& name, const std::string& contents) {
  std::ofstream file(path(name), std::ios::binary);
  file << contents;
  if (logical != 512 && name.ends_with(".vd")) file << "logical " << logical << "\n";
  return path(name);
}

std::string Rig::write_image(const std::string& name, std::int64_t sectors) {
  std::string contents;
  for (std::int64_t lba = 0; lba < sectors; ++lba) {
    std::string sector = std::to_string(lba) + " ";
    while (sector.size() < 512) sector += sector;
    contents += sector.substr(0, 512);
  }
  return write_file(name, contents);
}

std::string Rig::read_file(const std::string& path) {
  std::ostringstream contents;
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

void Rig::attach(int drive, const std::string& disk_file) {
  const std::string file = write_file("disk" + std::to_string(drive) + ".vd", disk_file);
  ASSERT_EQ(virtualdisk::attach(drive, file), "");
}

std::uint32_t Rig::start(const std::string& switches) {
  reset_program();
  headless::desktop.command_line = "\"C:\\tools /D:7\\sectorix.exe\" " + switches;
  try {
    return static_cast<std::uint32_t>(run_program());
  } catch (const headless::ProcessEnded& end) {
    return end.code;
  }
}

void Rig::open(const std::string& switches) {
  headless::desktop.has_display = true;
  EXPECT_EQ(start(switches), 0U);
}

std::string Rig::disk_switch(int drive, const std::string& disk_file) {
  return "/VDISK:" + std::to_string(drive) + "=" + write_file("d" + std::to_string(drive) + ".vd", disk_file) + " ";
}

void Rig::open_on(const std::string& disk_file) {
  open(disk_switch(0, disk_file));
}

void Rig::range(const std::string& start, const std::string& count) {
  form1.TxtStartLBA.set_text(start);
  form1.TxtNoSecs.set_text(count);
}

bool Rig::click(void (*handler)()) {
  try {
    handler();
    return false;
  } catch (const headless::ProcessEnded&) {
    return true;
  }
}

std::vector<headless::Call> passed_to(const std::string& name) {
  std::vector<headless::Call> found;
  for (const headless::Call& call : headless::desktop.passed) {
    if (call.name == name) found.push_back(call);
  }
  return found;
}

std::vector<std::string> lines_with(const std::string& text, const std::string& word) {
  std::vector<std::string> found;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.find(word) == std::string::npos) continue;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    found.push_back(line);
  }
  return found;
}

int count_of(const std::string& text, const std::string& word) {
  int count = 0;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + word.size())) ++count;
  return count;
}
