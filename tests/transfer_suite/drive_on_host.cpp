#include <gtest/gtest.h>

#include "tests/transfer_suite/drive.h"
#include "virtualdisk/virtualdisk.h"

void attach_suite_drive(const std::string& image) {
  ASSERT_EQ(virtualdisk::attach(kSuiteDrive, image), "");
}

std::string suite_image() {
  return ::testing::TempDir() + "transfer_suite.img";
}
