#pragma once

#include <cstdint>

#include "form/outcome.h"
#include "results/result.h"

/// How the command of `result` ended.
Outcome outcome_of(const Result& result);

/// The exit code that /EXIT:BITS asks for: a bit for each kind of trouble. docs/command-line.md lists them.
std::int32_t exit_bits(const Result& result);
