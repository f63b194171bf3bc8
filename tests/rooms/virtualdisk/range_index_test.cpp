#include "virtualdisk/range_index.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace virtualdisk {
namespace {

/// A hundred overlapping ranges on a hundred sectors, and what holds of each sector when one looks one by one.
class RangeIndexTest : public testing::Test {
 protected:
  RangeIndexTest() {
    for (int value = 0; value < 100; ++value) {
      const Range range = any_range(value % 7 == 0 ? 60 : 5);
      index_.add(range, value);
      for (std::int64_t sector = range.first; sector < range.end(); ++sector) plain_[sector].insert(value);
    }
    index_.sort();
  }

  Range any_range(int longest) {
    return {static_cast<std::int64_t>(random_() % 100), static_cast<std::int64_t>(random_() % longest + 1)};
  }

  void expect_same() {
    for (int i = 0; i < 500; ++i) {
      const Range asked = any_range(10);
      std::set<int> expected;
      for (std::int64_t sector = asked.first; sector < asked.end(); ++sector) expected.merge(std::set(plain_[sector]));
      std::set<int> found;
      index_.each_touching(asked, [&](const auto& entry) { found.insert(entry.value); });
      ASSERT_EQ(found, expected) << asked.first << " " << asked.count;
    }
  }

  std::mt19937 random_{1};
  RangeIndex<int> index_;
  std::map<std::int64_t, std::set<int>> plain_;
};

TEST_F(RangeIndexTest, FindsWhatTouchesAlsoAfterCuts) {
  expect_same();
  for (int i = 0; i < 20; ++i) {
    const Range cut = any_range(8);
    index_.cut(cut, [](int value) { return value % 2 == 0; });
    for (std::int64_t sector = cut.first; sector < cut.end(); ++sector) {
      std::erase_if(plain_[sector], [](int value) { return value % 2 == 0; });
    }
    expect_same();
  }
}

}  // namespace
}  // namespace virtualdisk
