#include <algorithm>
#include <cctype>

#include "device/kernel32.h"
#include "device/volume_disk.h"
#include "disk/error_text.h"
#include "form/asked.h"
#include "form/form1.h"
#include "ops/visit.h"
#include "smart/identification.h"

namespace {

constexpr int kMostTries = 1000;

/// The folder of the report, with its last separator; empty for the current one.
std::string folder() {
  const std::string report = asked.report.value_or("");
  const std::size_t end = report.find_last_of("/\\:");
  return end == std::string::npos ? std::string() : report.substr(0, end + 1);
}

std::string serial_in_name() {
  std::string serial = identification.Disk_Serial;
  std::replace_if(
      serial.begin(), serial.end(), [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '-'; },
      '_');
  return serial;
}

std::string why_none(std::uint32_t code) {
  return "They could not be saved: error " + std::to_string(code) + " - " + SystemErrorText(code);
}

/// Gives 0 once the bytes are on their disk, else the system's code.
std::uint32_t write_and_close(kernel32::Handle file, std::span<const std::uint8_t> bytes) {
  std::uint32_t moved = 0;
  std::uint32_t code = 0;
  const bool written = kernel32::WriteFile(file, bytes.data(), static_cast<std::uint32_t>(bytes.size()), &moved);
  if (written && moved < bytes.size()) {
    code = platform::kDiskFull;
  } else if (!written || !kernel32::FlushFileBuffers(file)) {
    code = kernel32::GetLastError();
  }
  if (!kernel32::CloseHandle(file) && code == 0) code = kernel32::GetLastError();
  return code;
}

}  // namespace

std::string save_to_rescue_file(std::int64_t lba, std::span<const std::uint8_t> sectors) {
  const std::string base = folder() + "sectorix-" + serial_in_name() + "-" + std::to_string(lba);
  switch (lies_on_drive(base, form1.SelectedDrive)) {
    case OnDrive::yes:
      return "They were not saved: the report's folder lies on the disk under test.";
    case OnDrive::unknown:
      return "They were not saved: it cannot be learned whether the report's folder lies on the disk under test.";
    case OnDrive::no:
      break;
  }
  for (int number = 0; number < kMostTries; ++number) {
    const std::string name = base + (number == 0 ? std::string() : "-" + std::to_string(number)) + ".bin";
    const kernel32::Handle file =
        kernel32::CreateFileA(name.c_str(), platform::kGenericWrite, 0, platform::kCreateNew, 0);
    if (file == kernel32::kInvalidHandle && kernel32::GetLastError() == platform::kFileExists) continue;
    if (file == kernel32::kInvalidHandle) return why_none(kernel32::GetLastError());
    const std::uint32_t code = write_and_close(file, sectors);
    if (code == 0) return "They are in the file " + name + ".";
    kernel32::DeleteFileA(name.c_str());
    return why_none(code);
  }
  return why_none(platform::kFileExists);
}
