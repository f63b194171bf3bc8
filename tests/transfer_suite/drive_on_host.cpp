#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "tests/transfer_suite/drive.h"
#include "virtualdisk/virtualdisk.h"

void attach_suite_drive(const std::string& image) {
  ASSERT_EQ(virtualdisk::attach(kSuiteDrive, image), "");
}

void detach_suite_drive() {
  virtualdisk::detach_all();
  std::remove(suite_image().c_str());
}

std::string suite_image() {
  return ::testing::TempDir() + "transfer_suite-" + std::to_string(getpid()) + ".img";
}
