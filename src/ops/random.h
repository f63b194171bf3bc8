#pragma once

#include <cstdint>

/// The tests that visit random places of the selected drive. A visit is one place of counters.No_Secs sectors.
struct RandomTest {
  std::int32_t passes = 0;    // visits to make
  std::int64_t Ops_Done = 0;  // visits made
};

extern RandomTest random_test;

/// A random LBA for a visit of `sectors` sectors that stays on the disk; the disk must have more sectors than that.
std::int64_t GetRandomSector(std::int64_t sectors);

/// Fills Sec_Buf, its last one to four bytes left out, with a random pattern of four bytes 00 to FE, and shows it in
/// TxtPattern.
void FillRandPatt();

/// Reads at random places.
void Random_Read_Test();

/// At each place reads, writes a random pattern, reads it back and compares, and writes the former contents back. A
/// place whose contents could not be read is not written to.
void Random_Write_Test();

/// At each place writes the fill pattern, reads it back and compares.
void Destructive_Random_Write_Test();

/// The tests in their frames. The destructive one asks first and belongs to no button or switch: tests run it.
void random_read_command();
void random_write_command();
void Cmd_Destructive_Random_Write();
