#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "device/kernel32.h"
#include "device/volume_disk.h"
#include "disk/error_text.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "platform/system.h"
#include "results/output_file.h"

namespace {

struct OutputName {
  const char* which;
  const std::optional<std::string>* name;
  bool replaced;  // written under a temporary name
};

const std::array<OutputName, 8>& outputs() {
  static const std::array<OutputName, 8> names = {{{"/REPORT", &asked.report, false},
                                                   {"/VARS", &asked.vars, false},
                                                   {"/CSV", &asked.csv, true},
                                                   {"/JSON", &asked.json, true},
                                                   {"/GRAPH", &asked.graph, true},
                                                   {"/HTML", &asked.html, true},
                                                   {"/BADLIST", &asked.badlist, true},
                                                   {"/MAP", &asked.map, true}}};
  return names;
}

/// The code with which opening the file for writing fails; 0 also where there is none yet.
std::uint32_t why_not_writable(const std::string& name) {
  constexpr std::uint32_t kNoSuchFile = 2;
  const kernel32::Handle file = kernel32::CreateFileA(
      name.c_str(), platform::kGenericWrite, platform::kShareRead | platform::kShareWrite, platform::kOpenExisting, 0);
  if (file == kernel32::kInvalidHandle) {
    return kernel32::GetLastError() == kNoSuchFile ? 0 : kernel32::GetLastError();
  }
  kernel32::CloseHandle(file);
  return 0;
}

std::string same_file(const std::string& name) {
  return upper_case(platform::full_path(name));
}

bool is_virtual_disk(const std::string& path) {
  return std::any_of(asked.virtual_disks.begin(), asked.virtual_disks.end(),
                     [&](const std::string& disk) { return !disk.empty() && same_file(disk) == path; });
}

/// False for an output that is not wanted, or goes to standard output as it may.
bool is_file(const OutputName& output) {
  return *output.name && (output.replaced || **output.name != "-");
}

/// Compares names alone, so that no file is touched for a run that is then refused.
std::string named_twice() {
  std::vector<std::string> taken;
  // The map that a read goes on from may be written anew, and nothing else over it.
  const bool renewed = asked.resume && asked.map && same_file(*asked.resume) == same_file(*asked.map);
  if (asked.resume && !renewed) taken.push_back(same_file(*asked.resume));
  for (const OutputName& output : outputs()) {
    if (!is_file(output)) continue;
    std::vector<std::string> names = {same_file(**output.name)};
    if (output.replaced) names.push_back(same_file(temporary_name(**output.name)));
    if (std::find_first_of(names.begin(), names.end(), taken.begin(), taken.end()) != names.end()) {
      return std::string(output.which) + ": \"" + **output.name + "\" is named twice.";
    }
    taken.insert(taken.end(), names.begin(), names.end());
  }
  return {};
}

std::string check(const OutputName& output, const std::string& path) {
  const std::string& name = **output.name;
  const std::string shown = std::string(output.which) + ": \"" + name + "\" ";
  if (name == "-") return shown + "is no file; only /REPORT and /VARS go to standard output.";
  std::string problem = why_no_file(name);
  if (!problem.empty()) return shown + problem;
  if (is_virtual_disk(path)) return shown + "is a virtual disk of this run.";
  if (asked.writes && !asked.named_drives.empty() && lies_on_drive(path, asked.named_drives.front()) != OnDrive::no)
    return shown + "lies on the disk under test.";
  if (const std::uint32_t code = why_not_writable(name)) {
    return shown + "is a folder or cannot be written: " + coded_error_text(code);
  }
  if (!output.replaced) return {};
  OutputFile probe;
  problem = open_output(name, &probe);
  abandon_output(&probe);
  return problem.empty() ? problem : std::string(output.which) + ": " + problem;
}

}  // namespace

std::string why_no_file(const std::string& name) {
  if (platform::names_device(name)) return "is a device.";
  if (name.empty() || std::string_view("/\\:").find(name.back()) != std::string_view::npos) return "is a folder.";
  return {};
}

namespace {

/// How a file begins: nothing of one that is not there. No value where it cannot be read.
std::optional<std::string> beginning_of(const std::string& name) {
  constexpr std::uint32_t kNoSuchFile = 2;
  constexpr std::uint32_t kLook = 4096;  // bytes
  const kernel32::Handle file = kernel32::CreateFileA(
      name.c_str(), platform::kGenericRead, platform::kShareRead | platform::kShareWrite, platform::kOpenExisting, 0);
  if (file == kernel32::kInvalidHandle) {
    return kernel32::GetLastError() == kNoSuchFile ? std::optional(std::string()) : std::nullopt;
  }
  std::string beginning(kLook, '\0');
  std::uint32_t moved = 0;
  const bool read = kernel32::ReadFile(file, beginning.data(), kLook, &moved);
  kernel32::CloseHandle(file);
  beginning.resize(moved);
  return read ? std::optional(beginning) : std::nullopt;
}

/// True for an output's name that is no other file of the command line's. Nothing is known of the disk yet.
bool stands_alone(const std::string& name) {
  const std::string file = same_file(name);
  const auto same = std::count_if(outputs().begin(), outputs().end(), [&](const OutputName& output) {
    return is_file(output) && same_file(**output.name) == file;
  });
  const bool resumed = asked.resume && same_file(*asked.resume) == file;
  return same == 1 && !resumed && why_no_file(name).empty() && !is_virtual_disk(file);
}

}  // namespace

bool is_new_or_ours(const std::string& name, std::string_view mark) {
  if (!stands_alone(name)) return false;
  const std::optional<std::string> beginning = beginning_of(name);
  const bool ours = beginning && (beginning->empty() || beginning->find(mark) != std::string::npos);
  if (!ours || why_not_writable(name) != 0) return false;
  OutputFile probe;
  const bool folder_takes_files = open_output(name, &probe).empty();
  abandon_output(&probe);
  return folder_takes_files;
}

std::string why_no_result_file(const std::string& name) {
  const std::optional<std::string> file = name;
  return check({"The page", &file, true}, same_file(name));
}

std::string check_output_names() {
  std::string problem = named_twice();
  for (const OutputName& output : outputs()) {
    if (problem.empty() && is_file(output)) problem = check(output, same_file(**output.name));
  }
  return problem;
}
