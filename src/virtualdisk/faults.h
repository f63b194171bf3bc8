#pragma once

#include <cstdint>
#include <vector>

#include "virtualdisk/range_index.h"

namespace virtualdisk {

/// The faults of one disk, ready to be asked about a transfer. Ranges that are asked about lie on the disk.
class Faults {
 public:
  Faults() = default;
  Faults(const DiskFile& disk, std::int64_t sectors);

  /// The error code that a read or write of `range` fails with, or 0. Of several `fail` lines the first listed decides.
  std::uint32_t failure(Op op, const Range& range) const;

  /// Makes written sectors readable again where the disk heals.
  void heal(const Range& written);

  /// How many sectors of `range` a transfer moves before it stops.
  std::int64_t sectors_moved(Op op, const Range& range) const;

  /// True when some transfer of this disk takes longer than the machine needs.
  bool takes_time() const { return outer_rate_ > 0.0 || !slows_.empty(); }

  /// Seconds that a transfer of `range` takes by the disk's rate and its slow places; whether it touched a slow place.
  double seconds(const Range& range, bool* slow) const;

  /// A part of a write and where it lands.
  struct Piece {
    Range range;
    std::int64_t lands_at;
  };

  /// True when all of a write to `range` lands where it was sent.
  bool lands_in_place(const Range& range) const;

  /// The parts of a write to `range` that reach the disk, in ascending order of `range`.
  std::vector<Piece> landing(const Range& range) const;

 private:
  struct Listed {
    Op op;
    std::uint32_t code;
    std::size_t order;
  };
  struct Stray {
    std::int64_t offset;
    std::size_t order;
  };
  struct Nothing {};

  std::int64_t sectors_ = 0;
  bool heals_ = false;
  double outer_rate_ = 0.0;
  double inner_rate_ = 0.0;
  RangeIndex<Listed> fails_;
  RangeIndex<Op> shorts_;
  RangeIndex<double> slows_;
  RangeIndex<Stray> strays_;
  RangeIndex<Nothing> drops_;
};

}  // namespace virtualdisk
