#include "journal/places.h"

#include <algorithm>
#include <cctype>

#include "device/volume_disk.h"
#include "form/asked.h"
#include "platform/system.h"

namespace {

constexpr const char* kPrefix = "sectorix-";
constexpr const char* kEnding = ".journal";

std::string report_folder() {
  const std::string& report = *asked.report;
  const std::size_t end = report.find_last_of("/\\:");
  return end == std::string::npos ? std::string() : report.substr(0, end + 1);
}

std::string local_folder() {
  const std::string data = platform::local_data_folder();
  return data.empty() ? data : with_separator(with_separator(data) + "Sectorix");
}

/// All places in which a journal may lie, the first ones preferred.
std::vector<std::string> folders() {
  std::vector<std::string> all;
  if (asked.journal) all.push_back(with_separator(*asked.journal));
  if (asked.report && *asked.report != "-") all.push_back(report_folder());
  const std::string local = local_folder();
  if (!local.empty()) all.push_back(local);
  return all;
}

std::string shown(const std::string& folder) {
  return "\"" + platform::full_path(folder.empty() ? "." : folder) + "\"";
}

}  // namespace

std::string with_separator(const std::string& folder) {
  if (folder.empty() || folder.back() == '/' || folder.back() == '\\') return folder;
  return folder + (folder.find('/') == std::string::npos ? "\\" : "/");
}

std::string in_file_name(const std::string& serial) {
  std::string name = serial;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '-'; },
      '_');
  return name;
}

JournalFolder named_folder(const std::string& folder, int drive) {
  JournalFolder place{.folder = with_separator(folder), .why = {}};
  switch (lies_on_drive(journal_file(place.folder, ""), drive)) {
    case OnDrive::no:
      place.found = true;
      break;
    case OnDrive::yes:
      place.why = shown(folder) + " lies on the disk under test.";
      break;
    case OnDrive::unknown:
      place.why = "It cannot be learned whether " + shown(folder) + " lies on the disk under test.";
      break;
  }
  return place;
}

JournalFolder journal_folder(int drive) {
  JournalFolder last{.folder = {}, .why = "The system names no folder for the user's data."};
  for (const std::string& folder : folders()) {
    last = named_folder(folder, drive);
    if (!last.found && asked.journal) break;
    if (!last.found) continue;
    if (folder == local_folder()) platform::make_folder(folder);
    return last;
  }
  return last;
}

std::string journal_file(const std::string& folder, const std::string& serial) {
  return platform::full_path(folder + kPrefix + in_file_name(serial) + kEnding);
}

std::vector<std::string> left_journals() {
  std::vector<std::string> all;
  for (const std::string& folder : folders()) {
    for (const std::string& name : platform::files_in(folder, kPrefix, kEnding)) {
      const std::string file = platform::full_path(folder + name);
      if (std::find(all.begin(), all.end(), file) == all.end()) all.push_back(file);
    }
  }
  return all;
}

std::string journal_places_text() {
  std::string text;
  for (const std::string& folder : folders()) text += (text.empty() ? "" : ", ") + shown(folder);
  return text;
}
