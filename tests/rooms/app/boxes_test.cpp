// The buttons and default answers of the boxes that buttons open.

#include <gmock/gmock.h>

#include "app/handlers.h"
#include "form/form1.h"
#include "tests/support/rig.h"

namespace {

using platform::Buttons;
using ::testing::ElementsAre;

class Boxes : public Rig {
 protected:
  Boxes() { open_on("sectors 1000\nserial S\n"); }

  /// Presses a button and returns the boxes that it showed, each answered with Cancel once `answers` are used up.
  static std::vector<headless::Box> boxes_of(void (*handler)(), std::deque<std::string> answers = {}) {
    headless::desktop.boxes.clear();
    headless::desktop.answers = std::move(answers);
    headless::desktop.otherwise = "CANCEL";
    click(handler);
    return headless::desktop.boxes;
  }

  static std::vector<std::string> defaults_of(void (*handler)(), std::deque<std::string> answers = {}) {
    std::vector<std::string> defaults;
    for (const headless::Box& box : boxes_of(handler, std::move(answers))) defaults.push_back(box.default_answer);
    return defaults;
  }
};

TEST_F(Boxes, AWriteIsConfirmedWithOkOrCancelAndAMessageOffersOkOnly) {
  for (auto* const writes : {CmdWrite_Click, Cmd_Destructive_Random_Write}) {
    const std::vector<headless::Box> asked = boxes_of(writes);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].buttons, Buttons::ok_cancel) << asked[0].title;
  }
  EXPECT_EQ(boxes_of(CmdHelp_Click).at(0).buttons, Buttons::ok);
  form1.TxtPattern.set_text("12G4");
  EXPECT_EQ(boxes_of(CmdFillBuffer_Click).at(0).buttons, Buttons::ok) << "a bad pattern";
  EXPECT_EQ(boxes_of(CmdFind_Click, {"x"}).at(1).buttons, Buttons::ok) << "a bad search string";
}

TEST_F(Boxes, QuestionsOfferTheirDefaultAnswers) {
  EXPECT_THAT(defaults_of(CmdRndRD_Click, {"1"}), ElementsAre("100", "1000")) << "passes, sectors per operation";
  EXPECT_THAT(defaults_of(CmdRnd_Click, {"1"}), ElementsAre("100", "1000"));
  EXPECT_THAT(defaults_of(Cmd_OffTrack_Write), ElementsAre("100"));
  EXPECT_THAT(defaults_of(CmdFind_Click), ElementsAre(""));
  EXPECT_THAT(defaults_of(CmdSlowRate_Click, {"25"}), ElementsAre("10"));
  EXPECT_THAT(defaults_of(CmdSlowRate_Click), ElementsAre("25")) << "the limit in force";
}

}  // namespace
