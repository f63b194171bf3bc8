#pragma once

#include <cstdint>
#include <string>

/// The name of SMART attribute `id`, 29 characters; ids without a name give "(unknown parameter)" of that width.
std::string AttName(std::uint8_t id);
