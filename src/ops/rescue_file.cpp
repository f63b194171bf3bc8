#include "ops/rescue_file.h"

#include <algorithm>
#include <cctype>

#include "device/kernel32.h"
#include "disk/error_text.h"
#include "disk/volume.h"
#include "form/form1.h"
#include "form/run.h"
#include "smart/identification.h"

namespace {

constexpr std::uint32_t kFileExists = 80;  // winerror.h: ERROR_FILE_EXISTS
constexpr int kMostTries = 1000;

/// The folder of the report, with its last separator; empty for the current one.
std::string folder() {
  const std::string report = run.report.value_or("");
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

}  // namespace

std::string save_to_rescue_file(std::int64_t lba, std::span<const std::uint8_t> sectors) {
  const std::string base = folder() + "sectorix-" + serial_in_name() + "-" + std::to_string(lba);
  if (lies_on_drive(form1.SelectedDrive, base))
    return "They were not saved: the report's folder lies on the disk under test.";
  for (int number = 0; number < kMostTries; ++number) {
    const std::string name = base + (number == 0 ? std::string() : "-" + std::to_string(number)) + ".bin";
    const kernel32::Handle file =
        kernel32::CreateFileA(name.c_str(), platform::kGenericWrite, 0, platform::kCreateNew, 0);
    if (file == kernel32::kInvalidHandle && kernel32::GetLastError() == kFileExists) continue;
    if (file == kernel32::kInvalidHandle) return why_none(kernel32::GetLastError());
    std::uint32_t moved = 0;
    const bool written =
        kernel32::WriteFile(file, sectors.data(), static_cast<std::uint32_t>(sectors.size()), &moved) &&
        moved == sectors.size();
    const std::uint32_t code = kernel32::GetLastError();
    kernel32::CloseHandle(file);
    return written ? "They are in the file " + name + "." : why_none(code);
  }
  return why_none(kFileExists);
}
