#pragma once

#include <string>

/// Looks at the names of all files that the run is to write, before anything is written. An empty text, or one line
/// that says what is wrong: a folder, a device, a file that cannot be written, one that is also a virtual disk or named
/// twice, and in a run that writes a file on the disk under test.
std::string check_output_names();

/// What is wrong with the name alone: a device's, or a folder's; empty when nothing is.
std::string why_no_file(const std::string& name);
