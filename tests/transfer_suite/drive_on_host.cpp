#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "tests/transfer_suite/drive.h"
#include "virtualdisk/virtualdisk.h"

namespace {

std::string disk_file() {
  return suite_image() + ".vd";
}

}  // namespace

void attach_suite_drive(const std::string& image, int logical_sector) {
  std::ofstream(disk_file()) << "image " << image << "\nlogical " << logical_sector << "\n";
  ASSERT_EQ(virtualdisk::attach(kSuiteDrive, disk_file()), "");
}

void detach_suite_drive() {
  virtualdisk::detach_all();
  std::remove(suite_image().c_str());
  std::remove(disk_file().c_str());
}

std::string suite_image() {
  return ::testing::TempDir() + "transfer_suite-" + std::to_string(getpid()) + ".img";
}
