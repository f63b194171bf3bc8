#include "form/number_text.h"

#include <gtest/gtest.h>

namespace {

TEST(NumberText, FieldsTakeDecimalDigitsAndNothingElse) {
  EXPECT_EQ(number_in("  42 "), 42);
  EXPECT_EQ(number_in("9223372036854775807"), 9223372036854775807);
  for (const char* text : {"", " ", "-5", "+5", "1.5", "0x10", "12 34", "9223372036854775808", "5k"}) {
    EXPECT_EQ(number_in(text), 0) << text;
  }
}

TEST(NumberText, AnAnswerGivesItsLeadingNumber) {
  EXPECT_EQ(leading_number(" 2.5MB/s"), 2.5);
  EXPECT_EQ(leading_number("MB"), 0.0);
  EXPECT_EQ(leading_number("inf"), 0.0);
}

TEST(NumberText, SinglePrecisionTimesHaveSevenDigitsAndNoExponent) {
  EXPECT_EQ(single_text(12.5F), "12.5");
  EXPECT_EQ(single_text(3.90625F), "3.90625");
  EXPECT_EQ(single_text(0.0078125F), "0.0078125");
  EXPECT_EQ(single_text(-86390.24F), "-86390.24");
  EXPECT_EQ(single_text(1234567890.0F), "1234568000");
  EXPECT_EQ(single_text(0.0F), "0");
}

TEST(NumberText, RatesHaveFifteenDigits) {
  EXPECT_EQ(double_text(50.0), "50");
  EXPECT_EQ(double_text(100.0 / 3.0), "33.3333333333333");
  EXPECT_EQ(double_text(0.1 + 0.2), "0.3");
  EXPECT_EQ(double_text(1e20), "100000000000000000000");
}

TEST(NumberText, FixedFormRoundsHalfAwayFromZero) {
  EXPECT_EQ(fixed_text(0.25, 1), "0.3");
  EXPECT_EQ(fixed_text(-0.25, 1), "-0.3");
  EXPECT_EQ(fixed_text(0.0005, 3), "0.001");
  EXPECT_EQ(fixed_text(7.0, 1), "7.0");
}

}  // namespace
