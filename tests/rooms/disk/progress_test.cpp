#include "disk/progress.h"

#include <gmock/gmock.h>

#include "disk/counters.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/progress_line.h"
#include "tests/support/rig.h"

namespace {

using ::testing::HasSubstr;

class ProgressTest : public Rig {
 protected:
  ProgressTest() { counters.OpStartTime = headless::desktop.midnight_seconds; }

  /// A transfer of `sectors` sectors at LBA 7 that takes `seconds`.
  static void transfer(std::int64_t sectors, double seconds) {
    progress.XferStart = headless::desktop.midnight_seconds;
    headless::pass_time(seconds);
    progress.XferEnd = headless::desktop.midnight_seconds;
    counters.Sectors_Done += sectors;
    Display_Progress(sectors, 7);
    show_progress_line();
  }
};

TEST_F(ProgressTest, TheStatusLineGivesShareRateAndAverage) {
  counters.No_Secs = 40960;
  transfer(20480, 0.25);
  EXPECT_EQ(form1.TxtStatus.text(), "20480 sectors in 0.3s  (50%)  [40MB/s, avg=40MB/s]");
  transfer(20480, 0.04);
  EXPECT_EQ(form1.TxtStatus.text(), "40960 sectors in 0.3s  (100%)  [50MB/s, avg=68MB/s]") << "too short to time";
  transfer(20480, 0.04);
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("(0%)")) << "above a hundred";
}

TEST_F(ProgressTest, RatesComeFromTimedTransfersAlone) {
  transfer(20480, 0.1);
  transfer(20480, 0.5);
  transfer(20480, 0.049);
  EXPECT_NEAR(progress.HighRate, 100.0, 1e-6);
  EXPECT_NEAR(progress.LowRate, 20.0, 1e-6);
  EXPECT_NEAR(progress.MaxRateJump, 80.0, 1e-6);
}

TEST_F(ProgressTest, ASlowTransferOfAtLeast200SectorsIsReported) {
  transfer(199, 5.0);
  EXPECT_EQ(progress.SlowXfers, 0);
  transfer(20480, 1.25);
  EXPECT_EQ(progress.SlowXfers, 1);
  EXPECT_EQ(form1.Text1.text(), "3/1/2026 10:00:06 Slow xfer (<10MB/s) at 7 for 20480 blocks, 8MB/s\r\n");
  transfer(20480, 1.0);
  EXPECT_EQ(progress.SlowXfers, 1) << "10 MB/s is not below 10";
}

TEST_F(ProgressTest, AutoFollowsHalfTheAverageAfter100000Sectors) {
  set_slow_rate("please Auto");
  transfer(20480, 0.1);
  EXPECT_EQ(progress.SlowRate, 10.0);
  for (int i = 0; i < 4; ++i) transfer(20480, 0.1);
  EXPECT_EQ(progress.SlowRate, 50.0) << "half of 100 MB/s";
  clear_progress();
  EXPECT_EQ(progress.SlowRate, 10.0);
}

TEST_F(ProgressTest, TheAnswerToTheLimitsQuestion) {
  set_slow_rate("25.5 MB");
  EXPECT_EQ(progress.SlowRate, 25.5);
  clear_progress();
  EXPECT_EQ(progress.SlowRate, 25.5) << "a number that the user set stays";
  set_slow_rate("AUTO");
  set_slow_rate("");
  EXPECT_TRUE(progress.AutoSlowRate) << "an empty answer changes nothing";
  set_slow_rate("0");
  EXPECT_FALSE(progress.AutoSlowRate);
  EXPECT_EQ(progress.SlowRate, 10.0);
}

TEST_F(ProgressTest, MidnightAndAStandingClockDivideByNothing) {
  transfer(2048, 0.0);
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("avg=0MB/s"));
  headless::desktop.midnight_seconds = 86399.9;
  counters.OpStartTime = 86399.5;
  transfer(2048, 0.2);
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr(" in -86399.4s "));
  EXPECT_EQ(progress.average_rate, 0);
}

TEST_F(ProgressTest, StandardErrorGetsALineEveryTenSecondsOrOneRewrittenInPlace) {
  asked.mode = Mode::batch;
  for (int i = 0; i < 30; ++i) transfer(1, 1.0);
  EXPECT_EQ(count_of(err(), "\r\n"), 3);
  headless::desktop.err.clear();
  headless::desktop.err_is_terminal = true;
  asked.quiet = true;
  transfer(1, 60.0);
  EXPECT_EQ(err(), "");
}

}  // namespace
