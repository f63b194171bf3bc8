#pragma once

#include <cstdint>

/// Gives the number of visits and the sectors per visit: from the command line in command-line mode, where 0 or nothing
/// stands for the defaults and no limit applies, else from two questions. False when the user cancels one.
bool take_random_parameters(std::int32_t* passes, std::int64_t* sectors);

/// The number of passes alone, asked for with `title`.
bool take_passes(const char* title, std::int32_t* passes);
