#pragma once

#include <string>

/// Model, serial number and size of drive `drive` in words, by requests that need no rights and wait for no transfer;
/// empty for a drive that does not answer, or that a virtual disk is attached as. From any thread.
std::string system_drive_words(int drive);

/// The same of an attached virtual disk. On the operations' thread.
std::string virtual_drive_words(int drive);
