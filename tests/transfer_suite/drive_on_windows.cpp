#include <cstdlib>

#include "tests/transfer_suite/drive.h"

// The system's own drive 1 is the image already.
void attach_suite_drive(const std::string& /*image*/, int /*logical_sector*/) {}

void detach_suite_drive() {}

std::string suite_image() {
  const char* const image = std::getenv("SECTORIX_SUITE_IMAGE");
  return image != nullptr ? image : "";
}
