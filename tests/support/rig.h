#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/headless/headless.h"

/// A fresh program for each test, and the small vocabulary that tests drive it with.
class Rig : public ::testing::Test {
 protected:
  Rig();

  /// Bytes of a logical sector of the disks that the running test makes.
  inline static int logical = 512;
  ~Rig() override;

  /// Attaches a disk made from the text of a disk file.
  void attach(int drive, const std::string& disk_file);

  /// Writes a file into this test's folder and gives its path. A disk file ("*.vd") also gets the suite's sector size.
  static std::string write_file(const std::string& name, const std::string& contents);

  /// A raw image of `sectors` sectors, each filled with its own LBA; gives its path.
  static std::string write_image(const std::string& name, std::int64_t sectors);

  /// The path of a file in this test's folder.
  static std::string path(const std::string& name);

  /// The user's local application data, and the files in it.
  static std::string local_data();
  static std::vector<std::string> journals();

  static std::string read_file(const std::string& path);

  /// Starts the program with `switches` and gives its exit code.
  static std::uint32_t start(const std::string& switches);

  /// Starts it in interactive use: with a window, without /OP, up to the moment when it waits for the user.
  static void open(const std::string& switches);

  /// The switch that attaches a disk made from `disk_file`, which lies in this test's folder as "d<drive>.vd".
  static std::string disk_switch(int drive, const std::string& disk_file);

  /// Opens the program on drive 0, made from `disk_file`.
  static void open_on(const std::string& disk_file);

  /// What stands in the fields of the range.
  static void range(const std::string& start, const std::string& count);

  /// Calls a handler as a click does; gives true when it ended the process.
  static bool click(void (*handler)());

  /// What was written to standard output and standard error.
  static const std::string& out() { return headless::desktop.out; }
  static const std::string& err() { return headless::desktop.err; }
};

/// A suite that runs on disks whose logical sectors have 512 bytes, and again on some where they have 4096.
class EachSectorSize : public Rig, public ::testing::WithParamInterface<int> {
 protected:
  EachSectorSize() { logical = GetParam(); }
  ~EachSectorSize() override { logical = 512; }

  static bool long_sectors() { return logical != 512; }

  /// The 16065 sectors of a chunk, cut to whole logical ones.
  static std::int64_t chunk() { return long_sectors() ? 16064 : 16065; }
};

#define ON_EACH_SECTOR_SIZE(suite) \
  INSTANTIATE_TEST_SUITE_P(Bytes, suite, ::testing::Values(512, 4096), ::testing::PrintToStringParamName())

/// The recorded calls of that name, in their order, with what they passed.
std::vector<headless::Call> passed_to(const std::string& name);

/// The lines of `text` that contain `word`.
std::vector<std::string> lines_with(const std::string& text, const std::string& word);

/// How often `word` stands in `text`.
int count_of(const std::string& text, const std::string& word);
