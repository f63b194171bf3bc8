#pragma once

#include <string>

/// Model, serial number, size and bus of drive `drive` in words, by requests that need no rights and touch no medium;
/// empty for a drive that does not answer.
std::string drive_words(int drive);
