#include "disk/counters.h"

Counters counters;

float elapsed_seconds() {
  return static_cast<float>(counters.OpEndTime) - static_cast<float>(counters.OpStartTime);
}
