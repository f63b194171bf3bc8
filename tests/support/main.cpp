#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/state.h"

namespace {

/// No test finds what another one left, in whatever order they run.
class FreshProcess : public ::testing::EmptyTestEventListener {
  void OnTestStart(const ::testing::TestInfo& /*test*/) override { reset_all(); }
};

}  // namespace

int main(int argc, char** argv) {
  ::testing::InitGoogleMock(&argc, argv);
  ::testing::UnitTest::GetInstance()->listeners().Append(new FreshProcess);
  return RUN_ALL_TESTS();
}
