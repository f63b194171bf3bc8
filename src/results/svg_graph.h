#pragma once

#include <string>
#include <string_view>

#include "measure/measure.h"
#include "results/result.h"

/// The rate graph as one SVG document that needs nothing else, as the window draws it: the average as a line within the
/// band of lowest to highest, random tests as points, the slow limit dashed, slow transfers as triangles and errors as
/// crosses. Resting the pointer on a place tells its LBAs, MB/s and milliseconds.
std::string svg_graph(const Result& result, const Measure& measured);

/// `text` (ANSI) in UTF-8, as it may stand in SVG text and in quoted attributes.
std::string svg_text(std::string_view text);
