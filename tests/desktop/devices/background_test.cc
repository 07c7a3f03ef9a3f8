#include "desktop/devices/background.h"

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <thread>

#include "support/captured_stderr.h"

namespace {

using desktop::BackgroundWork;
using desktop::FinishBackgroundWork;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;

TEST(FinishBackgroundWork, HasNothingToDoWithoutWork) {
  EXPECT_TRUE(FinishBackgroundWork(milliseconds(0)));
}

TEST(FinishBackgroundWork, FinishesInTheOrderOfRegistrationWithOneDeadline) {
  std::vector<int> order;
  std::vector<steady_clock::time_point> deadlines;
  const auto note = [&](int number) {
    return [&order, &deadlines, number](steady_clock::time_point deadline) {
      order.push_back(number);
      deadlines.push_back(deadline);
      return true;
    };
  };
  const BackgroundWork first(note(1));
  auto gone = std::make_unique<BackgroundWork>(note(2));
  const BackgroundWork last(note(3));
  gone.reset();

  const auto before = steady_clock::now();
  EXPECT_TRUE(FinishBackgroundWork(milliseconds(2000)));
  EXPECT_THAT(order, ElementsAre(1, 3));
  EXPECT_EQ(deadlines[0], deadlines[1]);
  EXPECT_GE(deadlines[0], before + milliseconds(2000));
  EXPECT_LE(deadlines[0], steady_clock::now() + milliseconds(2000));
}

TEST(FinishBackgroundWork, AsksTheOthersAlsoAfterOneThatDidNotFinish) {
  bool asked = false;
  const BackgroundWork stuck([](auto) { return false; });
  const BackgroundWork other([&](auto) { return asked = true; });
  const CapturedStderr log;
  EXPECT_FALSE(FinishBackgroundWork(milliseconds(50)));
  EXPECT_TRUE(asked);
  EXPECT_THAT(log.Text(), testing::EndsWith(" background work is not finished after 50 ms\n"));
}

TEST(BackgroundWork, ComesAndGoesWhileOtherWorkIsBeingFinished) {
  std::atomic<bool> called = false;
  std::atomic<bool> gone = false;
  const BackgroundWork waiting([&](steady_clock::time_point deadline) {
    called = true;
    while (!gone && steady_clock::now() < deadline) std::this_thread::yield();
    return gone.load();
  });
  std::thread other([&] {
    while (!called) std::this_thread::yield();
    {
      const BackgroundWork brief([](auto) { return false; });
    }
    gone = true;
  });
  EXPECT_TRUE(FinishBackgroundWork(milliseconds(20'000)));
  other.join();
}

TEST(BackgroundWork, IsNotDestroyedWhileItIsBeingFinished) {
  std::atomic<bool> called = false;
  std::atomic<bool> alive = true;
  auto work = std::make_unique<BackgroundWork>([&](auto) {
    called = true;
    std::this_thread::sleep_for(milliseconds(50));
    return alive.load();
  });
  std::thread destroyer([&] {
    while (!called) std::this_thread::yield();
    work.reset();
    alive = false;
  });
  EXPECT_TRUE(FinishBackgroundWork(milliseconds(1000)));
  destroyer.join();
}

}  // namespace
