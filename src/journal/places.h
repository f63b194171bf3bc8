#pragma once

#include <string>
#include <vector>

/// Where undo journals lie: the folder of /JOURNAL, else the report's, else the user's local application data. Left
/// ones are looked for in all of them.

/// The folder for a new journal of drive `drive`, with its last separator (empty for the current one). The first that
/// certainly does not lie on the drive; nothing fits: `why` says so.
struct JournalFolder {
  bool found = false;
  std::string folder;
  std::string why;
};
JournalFolder journal_folder(int drive);

/// The same for a folder that the user names.
JournalFolder named_folder(const std::string& folder, int drive);

/// "sectorix-<serial>.journal" with its whole path.
std::string journal_file(const std::string& folder, const std::string& serial);

/// A serial number as a part of a file's name: other characters than letters, digits and hyphens become "_".
std::string in_file_name(const std::string& serial);

/// A folder's name with its last separator; empty for the current one.
std::string with_separator(const std::string& folder);

/// The whole paths of the journals in all places, in their order, each once.
std::vector<std::string> left_journals();

/// The places, for a text.
std::string journal_places_text();
