#pragma once

#include <string>

#include "measure/measure.h"
#include "results/result.h"

/// The whole result as one JSON document. docs/results.md tells its members.
std::string json_result(const Result& result, const Measure& measured);
