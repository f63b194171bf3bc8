#pragma once

#include <string>

/// Tells one line about a result file: on standard error and in the running report of the window.
void tell_and_show(const std::string& line);
