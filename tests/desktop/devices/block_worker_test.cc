#include "desktop/devices/block_worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include "desktop/devices/patience.h"

namespace {

using desktop::BlockWorker;
using desktop::Patience;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr desktop::DeviceFormat kFormat = {8000, 1};

TEST(Patience, CountsTheTimeWithoutProgress) {
  const desktop::Time start;
  Patience patience(milliseconds(100), start);
  EXPECT_FALSE(patience.IsOver(start + milliseconds(40)));
  EXPECT_FALSE(patience.IsOver(start + milliseconds(80)));
  patience.Renew(start + milliseconds(90));
  EXPECT_FALSE(patience.IsOver(start + milliseconds(140)));
  EXPECT_FALSE(patience.IsOver(start + milliseconds(189)));
  EXPECT_TRUE(patience.IsOver(start + milliseconds(190)));
}

TEST(Patience, LeavesOutATimeInWhichNobodyAsked) {
  const desktop::Time start;
  Patience patience(milliseconds(100), start);
  EXPECT_FALSE(patience.IsOver(start + seconds(100)));  // As 50 ms.
  EXPECT_FALSE(patience.IsOver(start + seconds(100) + milliseconds(49)));
  EXPECT_TRUE(patience.IsOver(start + seconds(100) + milliseconds(50)));
}

TEST(BlockWorker, CatchesUpWithTheBlockThatIsBeingWorkedOn) {
  std::atomic<int> done = 0;
  BlockWorker worker(
      kFormat,
      [&](short*, size_t) {
        std::this_thread::sleep_for(milliseconds(2));
        ++done;
      },
      seconds(2));
  const std::vector<short> block(80);
  for (int i = 1; i <= 50; ++i) {
    worker.Put(block.data());
    EXPECT_TRUE(worker.CatchUp(seconds(20)));
    EXPECT_EQ(done, i);
  }
}

TEST(BlockWorker, TellsWhatItLosesWhileTheWorkStandsStill) {
  std::latch begun(1);
  std::latch end(1);
  std::atomic<int> done = 0;
  BlockWorker worker(
      kFormat,
      [&](short*, size_t) {
        if (done++ > 0) return;
        begun.count_down();
        end.wait();
      },
      seconds(2));
  const std::vector<short> block(80);
  EXPECT_TRUE(worker.Put(block.data()));
  begun.wait();
  for (int i = 0; i < 200; ++i) EXPECT_TRUE(worker.Put(block.data()));
  EXPECT_EQ(worker.Lost(), 0U);
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(worker.Put(block.data()));
  EXPECT_EQ(worker.Lost(), 3U);
  EXPECT_FALSE(worker.CatchUp(milliseconds(20)));
  end.count_down();
  worker.Stop();
  EXPECT_EQ(done, 201);
  EXPECT_EQ(worker.Lost(), 3U);
}

TEST(BlockWorker, WaitsForWorkThatGetsOnHoweverLongItTakes) {
  std::atomic<int> done = 0;
  BlockWorker worker(
      kFormat,
      [&](short*, size_t) {
        std::this_thread::sleep_for(milliseconds(60));
        ++done;
      },
      seconds(2));
  const std::vector<short> block(80);
  for (int i = 0; i < 8; ++i) worker.Put(block.data());
  EXPECT_TRUE(worker.CatchUp(milliseconds(300)));
  EXPECT_EQ(done, 8);
  for (int i = 0; i < 8; ++i) worker.Put(block.data());
  EXPECT_TRUE(worker.StopOrLeave(milliseconds(300)));
  EXPECT_EQ(done, 16);
  EXPECT_EQ(worker.Lost(), 0U);
}

TEST(BlockWorker, LeavesWorkThatStandsStillWithWhatItOwns) {
  const auto owned = std::make_shared<std::latch>(1);
  const std::vector<short> block(80);
  {
    BlockWorker worker(
        kFormat, [owned](short*, size_t) { owned->wait(); }, seconds(2));
    for (int i = 0; i < 5; ++i) worker.Put(block.data());
    EXPECT_FALSE(worker.StopOrLeave(milliseconds(20)));
    EXPECT_EQ(worker.Lost(), 5U);
  }
  EXPECT_GT(owned.use_count(), 1);
  owned->count_down();
  while (owned.use_count() > 1) std::this_thread::sleep_for(milliseconds(1));
}

}  // namespace
