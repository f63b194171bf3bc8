#pragma once

#include <array>
#include <cstdint>

/// What a random test leaves to the user and to chance.

/// Gives the number of visits and the sectors per visit: from the command line in command-line mode, where 0 or nothing
/// stands for the defaults and no limit applies, else from two questions. False when the user cancels one.
bool choose_random_parameters(std::int32_t* passes, std::int64_t* sectors);

/// The number of passes alone, asked for with `title`.
bool choose_passes(const char* title, std::int32_t* passes);

/// One uniform generator with a fixed start: the same numbers in the same order in every run, on every machine.
struct RandomNumbers {
  std::uint64_t state = 0x9E3779B97F4A7C15;
};

inline RandomNumbers random_numbers;

/// The next number in [0, 1), with 53 bits of fraction.
double next_uniform();

/// The next number in [0, 1) in single precision, cut to 24 bits so that it never rounds up to 1.
float next_uniform_single();

/// Returns a random LBA, the start of a logical sector, for a visit of `sectors` sectors that stays on the selected
/// disk. On a disk with fewer sectors, as a missing one, the LBA is negative.
std::int64_t GetRandomSector(std::int64_t sectors);

/// What a visit of the non-destructive test writes over and over, each byte 00 to FE.
using RandomPattern = std::array<std::uint8_t, 4>;
RandomPattern draw_pattern();
