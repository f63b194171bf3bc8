#include "ops/random_numbers.h"

RandomNumbers random_numbers;

namespace {

/// SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014).
std::uint64_t next() {
  random_numbers.state += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = random_numbers.state;
  mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31U);
}

}  // namespace

double next_uniform() {
  return static_cast<double>(next() >> 11U) * 0x1p-53;
}

float next_uniform_single() {
  return static_cast<float>(next() >> 40U) * 0x1p-24F;
}
