#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "places/gpt.h"
#include "places/mbr.h"

/// What stands below the four entries of the partition table view.

/// True where more than the four entries is to be shown: `sector` has an entry of a GUID partition table's, or an
/// extended partition.
bool has_further_partitions(std::span<const std::uint8_t> sector);

/// Both as blocks of the view's style, each line behind a line end.
std::string gpt_text(const GptTable& table);
std::string logical_text(const LogicalTable& table);

/// What lies behind the entries of `sector`, the first of drive `drive`, whose logical sectors have `logical` bytes.
/// Opens the drive for reading and closes it. Empty where has_further_partitions() says no; then nothing is opened.
std::string further_partitions_text(int drive, std::span<const std::uint8_t> sector, std::int64_t logical);

/// The same as far as `bytes`, the start of such a disk, hold it, with what to read for the rest. Opens nothing.
std::string further_partitions_in(std::span<const std::uint8_t> bytes, std::int64_t logical);
