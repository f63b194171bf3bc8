#pragma once

#include <cstdint>

#include "buffer/search.h"

/// Reads `count` sectors from `*lba` in transfers of `chunk` sectors, the last one shortened, until one holds a match.
/// Gives the match's offset in Sec_Buf, or -1; `*lba` is then the first LBA not read, on a match the chunk's first one.
std::int64_t ReadSearchSectors(const Search& search, std::int64_t* lba, std::int64_t count, std::int64_t chunk);

/// Asks for the search string, unless the command line gave it, and searches the range in its frame.
void find_command();
