#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "device/kernel32.h"

/// A file that is written under a temporary name in the same folder and renamed when it is whole, so that nobody ever
/// reads half of one under its own name.
struct OutputFile {
  std::string name;  // the final one
  std::string temporary;
  kernel32::Handle handle = kernel32::kInvalidHandle;
};

/// The name that a file has while it is written, unless there is a file of that name: "NAME.tmp".
std::string temporary_name(const std::string& name);

/// Creates the temporary file; "NAME.tmp2" to "NAME.tmp9" where a former run's lies there, since that may be all that
/// is left of its results. An empty text, or one line that says what failed.
std::string open_output(const std::string& name, OutputFile* file);

/// Appends `text`. On failure the temporary file is deleted and the line says why.
std::string write_output(std::string_view text, OutputFile* file);

/// Closes the file and gives it its name, in place of one that has it. Where the system refuses that, the temporary
/// file stays and the line names it.
std::string finish_output(OutputFile* file);

/// Closes and deletes the temporary file, if there is one.
void abandon_output(OutputFile* file);

/// How far a file has got when it has its name: into the system, or onto its disk.
enum class Reach : std::uint8_t { system, medium };

/// All of that at once.
std::string write_whole_file(const std::string& name, std::string_view text, Reach reach = Reach::system);

/// Looks at the names of all files that the run is to write, before anything is written. An empty text, or one line
/// that says what is wrong: a folder, a device, a file that cannot be written, one that is also a virtual disk or named
/// twice, and in a run that writes a file on the disk under test.
std::string check_output_names();

/// Of a run that ends before its disk was looked at: true for a name that stands alone among the outputs and is that of
/// no file yet, or of one in whose beginning `mark` says that an earlier run wrote it. Another could be a disk's image.
bool is_new_or_ours(const std::string& name, std::string_view mark);

/// Gives an empty text, or why the page cannot be written to the file that the user named.
std::string why_no_result_file(const std::string& name);

/// What is wrong with the name alone: a device's, or a folder's; empty when nothing is.
std::string why_no_file(const std::string& name);
