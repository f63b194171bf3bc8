#include "platform/exchange.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

namespace {

using platform::Baton;
using platform::Press;
using platform::Presses;

bool any(const Press& /*press*/) {
  return true;
}

TEST(BatonTest, TheWindowTakesItOnlyWhileItIsLent) {
  Baton baton;
  EXPECT_FALSE(baton.try_take());
  baton.lend();
  EXPECT_TRUE(baton.try_take());
  EXPECT_FALSE(baton.try_take());
  baton.give_back();
  baton.take_back();
  EXPECT_FALSE(baton.try_take());
}

TEST(BatonTest, AnOfferThatNobodyTakesEnds) {
  Baton baton;
  baton.want();
  EXPECT_TRUE(baton.wanted());
  baton.offer(std::chrono::milliseconds(1));
  EXPECT_FALSE(baton.wanted()) << "it is not offered again at every pump";
  EXPECT_FALSE(baton.try_take());
}

/// Two threads change the same data; a sanitizer for threads sees whether they ever do so at once.
TEST(BatonTest, WhatBothThreadsTouchIsNeverTouchedByBoth) {
  constexpr int kCalls = 20000;
  constexpr int kShown = 50;
  Baton baton;
  std::string data = "a";
  std::atomic<bool> ended = false;
  int shown = 0;
  std::thread window([&] {
    while (!ended) {
      if (!baton.try_take()) {
        baton.want();
        std::this_thread::yield();
        continue;
      }
      data = std::string(data.size() % 100 + 1, 'w');
      ++shown;
      baton.give_back();
    }
  });
  const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  for (int i = 0; (i < kCalls || shown < kShown) && std::chrono::steady_clock::now() < patience; ++i) {
    data += 'o';
    baton.lend();
    if (i % 100 == 0) std::this_thread::yield();
    baton.take_back();
    if (baton.wanted() && i % 10 == 0) baton.offer(std::chrono::milliseconds(5));
  }
  ended = true;
  baton.lend();
  window.join();
  EXPECT_GE(shown, kShown);
  EXPECT_FALSE(data.empty());
}

TEST(PressesTest, ComeInTheOrderInWhichTheyWereMade) {
  Presses presses;
  EXPECT_FALSE(presses.any());
  presses.add({.what = Press::What::click, .row = 3});
  presses.add({.what = Press::What::typing, .row = 4, .text = "12"});
  presses.add({.what = Press::What::click, .row = 5});
  EXPECT_TRUE(presses.any());
  EXPECT_TRUE(presses.waits([](const Press& press) { return press.row == 5; }));
  const auto typed = presses.take([](const Press& press) { return press.what == Press::What::typing; });
  ASSERT_TRUE(typed);
  EXPECT_EQ(typed->text, "12");
  EXPECT_EQ(presses.take(any)->row, 3U);
  EXPECT_EQ(presses.take(any)->row, 5U);
  EXPECT_FALSE(presses.take(any));
  EXPECT_FALSE(presses.any());
}

TEST(PressesTest, AThreadThatWaitsIsWokenByEachOne) {
  constexpr std::size_t kMany = 5000;
  Presses presses;
  std::thread user([&] {
    for (std::size_t i = 0; i < kMany; ++i) presses.add({.row = i});
  });
  for (std::size_t next = 0; next < kMany;) {
    presses.wait();
    while (const auto press = presses.take(any)) EXPECT_EQ(press->row, next++);
  }
  user.join();
}

}  // namespace
