#pragma once

#include "measure/measure.h"
#include "platform/canvas.h"

/// Draws the rates over the run's range: the average as a line within the band of lowest to highest, the slow limit
/// (MB/s) dashed, slow transfers and errors as marks, random tests as points. Gives where the range lies on the canvas;
/// empty where there is no run or no room.
platform::Rect draw_rate_graph(const Measure& of, double slow_limit, platform::Canvas* canvas);
