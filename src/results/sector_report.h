#pragma once

/// Appends the block of the sectors' sizes to Text1 and the report, where the selected drive's logical or physical
/// sectors have other than 512 bytes, and says whether the range of the operation that ends is made of whole ones.
/// `writes`: the command is one that writes.
void tell_sector_sizes(bool writes);
