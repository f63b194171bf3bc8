#include "results/output_file.h"

#include <algorithm>
#include <cstdint>

#include "disk/error_text.h"

namespace {

/// "The file "x.csv" cannot be written: error 112 - There is not enough space on the disk."
std::string failure(const OutputFile& file, const std::string& what, std::uint32_t code) {
  return "The file \"" + file.name + "\" " + what + ": " + coded_error_text(code);
}

void close(OutputFile* file) {
  kernel32::CloseHandle(file->handle);
  file->handle = kernel32::kInvalidHandle;
}

}  // namespace

std::string temporary_name(const std::string& name) {
  return name + ".tmp";
}

std::string open_output(const std::string& name, OutputFile* file) {
  constexpr int kNames = 9;
  file->name = name;
  for (int number = 1; number <= kNames; ++number) {
    file->temporary = temporary_name(name) + (number == 1 ? "" : std::to_string(number));
    file->handle = kernel32::CreateFileA(file->temporary.c_str(), platform::kGenericWrite, platform::kShareRead,
                                         platform::kCreateNew, 0);
    if (file->handle != kernel32::kInvalidHandle) return {};
    if (kernel32::GetLastError() != platform::kFileExists) break;
  }
  return failure(*file, "cannot be made as \"" + file->temporary + "\"", kernel32::GetLastError());
}

std::string write_output(std::string_view text, OutputFile* file) {
  constexpr std::size_t kMostAtOnce = 1U << 20U;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, kMostAtOnce);
    std::uint32_t moved = 0;
    const bool done = kernel32::WriteFile(file->handle, part.data(), static_cast<std::uint32_t>(part.size()), &moved);
    if (!done || moved != part.size()) {
      std::string line = failure(*file, "cannot be written", done ? platform::kDiskFull : kernel32::GetLastError());
      abandon_output(file);
      return line;
    }
    text.remove_prefix(part.size());
  }
  return {};
}

std::string finish_output(OutputFile* file) {
  close(file);
  if (kernel32::MoveFileExA(file->temporary.c_str(), file->name.c_str(),
                            platform::kReplaceExisting | platform::kWriteThrough)) {
    return {};
  }
  return failure(*file, "cannot be replaced", kernel32::GetLastError()) + " Its contents are in \"" + file->temporary +
         "\".";
}

void abandon_output(OutputFile* file) {
  if (file->handle == kernel32::kInvalidHandle) return;
  close(file);
  kernel32::DeleteFileA(file->temporary.c_str());
}

std::string write_whole_file(const std::string& name, std::string_view text, Reach reach) {
  OutputFile file;
  std::string error = open_output(name, &file);
  if (error.empty()) error = write_output(text, &file);
  if (error.empty() && reach == Reach::medium && !kernel32::FlushFileBuffers(file.handle)) {
    error = failure(file, "cannot be written", kernel32::GetLastError());
    abandon_output(&file);
  }
  return error.empty() ? finish_output(&file) : error;
}
