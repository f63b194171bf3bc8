#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "virtualdisk/disk_file.h"

namespace virtualdisk {

/// Values on ranges of sectors that may overlap; asks for those that touch a range without looking at the others.
template <typename Value>
class RangeIndex {
 public:
  struct Entry {
    Range range;
    Value value;
    std::int64_t furthest_end;  // of this entry and all before it
  };

  bool empty() const { return entries_.empty(); }

  /// Adds a value. sort() must follow before anything is asked.
  void add(const Range& range, const Value& value) { entries_.push_back({range, value, 0}); }

  void sort() {
    std::sort(entries_.begin(), entries_.end(),
              [](const Entry& a, const Entry& b) { return a.range.first < b.range.first; });
    std::int64_t furthest = 0;
    for (Entry& entry : entries_) {
      furthest = std::max(furthest, entry.range.end());
      entry.furthest_end = furthest;
    }
  }

  /// Calls `look` with each entry that touches `range`, in no particular order.
  template <typename Look>
  void each_touching(const Range& range, Look look) const {
    if (range.count == 0) return;
    auto entry = std::partition_point(entries_.begin(), entries_.end(),
                                      [&](const Entry& e) { return e.range.first < range.end(); });
    while (entry != entries_.begin()) {
      --entry;
      if (entry->furthest_end <= range.first) return;
      if (entry->range.end() > range.first) look(*entry);
    }
  }

  /// Takes `range` out of the entries that `chosen` picks; what they hold on either side stays.
  template <typename Chosen>
  void cut(const Range& range, Chosen chosen) {
    std::vector<Entry> kept;
    bool changed = false;
    for (const Entry& entry : entries_) {
      const bool hit = entry.range.first < range.end() && entry.range.end() > range.first && chosen(entry.value);
      changed = changed || hit;
      if (!hit) {
        kept.push_back(entry);
        continue;
      }
      if (entry.range.first < range.first) {
        kept.push_back({{entry.range.first, range.first - entry.range.first}, entry.value, 0});
      }
      if (entry.range.end() > range.end()) {
        kept.push_back({{range.end(), entry.range.end() - range.end()}, entry.value, 0});
      }
    }
    if (!changed) return;
    entries_ = std::move(kept);
    sort();
  }

 private:
  std::vector<Entry> entries_;
};

}  // namespace virtualdisk
