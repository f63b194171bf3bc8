#pragma once

#include <cstdint>

/// One uniform generator with a fixed start: the same numbers in the same order in every run, on every machine.
struct RandomNumbers {
  std::uint64_t state = 0x9E3779B97F4A7C15;
};

extern RandomNumbers random_numbers;

/// The next number in [0, 1), with 53 bits of fraction.
double next_uniform();

/// The next number in [0, 1) in single precision, cut to 24 bits so that it never rounds up to 1.
float next_uniform_single();
