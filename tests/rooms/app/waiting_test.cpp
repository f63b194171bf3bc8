#include "app/waiting.h"

#include <gmock/gmock.h>

#include "disk/counters.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/progress_line.h"
#include "measure/measure.h"
#include "pictures/progress_bar.h"
#include "tests/support/rig.h"

namespace {

using platform::Stops;
using ::testing::HasSubstr;
using ::testing::Not;

class WaitingTexts : public Rig {
 protected:
  WaitingTexts() { form1.TxtStatus.set_text("At sector 5 and reading 8 sectors"); }
};

TEST_F(WaitingTexts, NothingIsSaidInTheFirstSecond) {
  EXPECT_EQ(tell_waiting({.seconds = 0.99}), "");
  EXPECT_EQ(tell_waiting({.seconds = 12.9}), "At sector 5 and reading 8 sectors, waiting for 12 s");
  EXPECT_EQ(form1.TxtStatus.text(), "At sector 5 and reading 8 sectors") << "the report tells the field";
}

TEST_F(WaitingTexts, ATransferCoversWhatTheOneBeforeTold) {
  counters = {.No_Secs = 16};
  std::int64_t lba = 0;
  Read_sectors(&lba, 16, 8, Events::run);
  const std::string told = form1.TxtStatus.text();
  EXPECT_THAT(told, HasSubstr("16 sectors in "));
  read_once(3, 2);
  EXPECT_EQ(form1.TxtStatus.text(), "At sector 3 and reading 2 sectors");
  EXPECT_EQ(form1.TxtStatus.beneath(), told);
  form1.TxtStatus.append("!");
  EXPECT_EQ(form1.TxtStatus.text(), "At sector 3 and reading 2 sectors!");
  form1.TxtStatus.set_text("Done");
  EXPECT_EQ(form1.TxtStatus.beneath(), "Done");
}

TEST_F(WaitingTexts, APressIsAnsweredAtOnce) {
  EXPECT_EQ(tell_waiting({.seconds = 0.3, .pressed = Stops::command, .can_be_given_up = true}),
            "Cancelling after this transfer. Cancel again gives the read up.");
  EXPECT_EQ(tell_waiting({.seconds = 12.0, .pressed = Stops::command}),
            "Cancelling after this transfer: the drive has not answered for 12 s");
  EXPECT_EQ(tell_waiting({.seconds = 2.0, .pressed = Stops::program, .holds_other_data = true}),
            "Leaving after this transfer: the drive has not answered for 2 s. The disk gets its contents back first.");
}

TEST_F(WaitingTexts, TheBarCountsOn) {
  begin_measuring({.kind = RunKind::read, .sectors = 100});
  tell_waiting({.seconds = 7.5});
  EXPECT_EQ(progress_words().left, "waiting 7 s");
  tell_waiting({});
  EXPECT_EQ(progress_words().left, "");
}

TEST_F(WaitingTexts, ABatchTellsItOnStandardErrorButNeverInAVisit) {
  asked.mode = Mode::batch;
  begin_progress_line();
  headless::pass_time(60.0);
  tell_waiting({.seconds = 60.0, .holds_other_data = true});
  EXPECT_EQ(err(), "") << "a console that somebody has halted would hold the disk's contents";
  tell_waiting({.seconds = 60.0});
  EXPECT_THAT(err(), HasSubstr("At sector 5 and reading 8 sectors, waiting for 60 s"));
  EXPECT_THAT(leaving_text({.seconds = 3.0}), Not(HasSubstr("contents")));
}

}  // namespace
