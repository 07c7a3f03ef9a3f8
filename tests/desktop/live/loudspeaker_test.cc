#include "desktop/live/loudspeaker.h"

#include <gmock/gmock.h>

#include <atomic>
#include <latch>
#include <memory>
#include <thread>

#include "desktop/live/play_feed.h"
#include "desktop/live/played.h"
#include "desktop/live/wait.h"
#include "support/tone.h"

namespace {

using desktop::Loudspeaker;
using desktop::PlayedBlock;
using desktop::PlayFeed;
using testing::Each;

// The same value for ever.
class Level : public desktop::PlaySource {
 public:
  explicit Level(short level, AudioSourceType feedback = AudioSourceTypeMic)
      : m_level(level), m_feedback(feedback) {
    Loudspeaker::Shared().Add(this);
  }
  ~Level() override { Loudspeaker::Shared().Remove(this); }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;

  void FillBlock(short* samples, size_t frames) override {
    std::fill_n(samples, 2 * frames, m_level);
    ++m_calls;
  }
  AudioSourceType FeedBack() const override { return m_feedback; }
  int calls() const { return m_calls; }

 private:
  const short m_level;
  const AudioSourceType m_feedback;
  std::atomic<int> m_calls = 0;
};

class LoudspeakerTest : public testing::Test {
 protected:
  void SetUp() override { desktop::UseNullDevices(20); }
};

// Does not return from a block until it is let go.
class HeldSource : public desktop::PlaySource {
 public:
  void FillBlock(short* samples, size_t frames) override {
    std::fill_n(samples, 2 * frames, short{0});
    called = true;
    goes.wait();
  }
  std::atomic<bool> called = false;
  std::latch goes{1};
};

// Nobody waits for a block that is being mixed but who removes what is in it.
TEST_F(LoudspeakerTest, TakesASourceWhileAnotherOneFillsItsBlock) {
  HeldSource held;
  Loudspeaker::Shared().Add(&held);
  EXPECT_TRUE(WaitUntil([&] { return held.called.load(); }));
  std::atomic<bool> added = false;
  std::atomic<bool> removed = false;
  std::unique_ptr<Level> other;
  std::thread adds([&] {
    other = std::make_unique<Level>(short{1000});
    added = true;
  });
  EXPECT_TRUE(WaitUntil([&] { return added.load(); }));
  std::thread removes([&] {
    Loudspeaker::Shared().Remove(&held);
    removed = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(removed);
  held.goes.count_down();
  adds.join();
  removes.join();
  EXPECT_TRUE(WaitUntil([&] { return other->calls() > 0; }));
}

// Nor does anybody wait for who removes something.
TEST_F(LoudspeakerTest, TakesASourceWhileSomethingIsBeingRemoved) {
  const Level stays(0);
  for (const bool removesSource : {true, false}) {
    HeldSource held;
    PlayFeed feed(PlayFeed::What::kPlayed, Loudspeaker::kFormat);
    Loudspeaker::Shared().Add(&held);
    Loudspeaker::Shared().Add(&feed);
    EXPECT_TRUE(WaitUntil([&] { return held.called.load(); }));
    std::thread removes([&] {
      if (removesSource) {
        Loudspeaker::Shared().Remove(&held);
      } else {
        Loudspeaker::Shared().Remove(&feed);
      }
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::atomic<bool> added = false;
    std::unique_ptr<Level> other;
    std::thread adds([&] {
      other = std::make_unique<Level>(short{1000});
      added = true;
    });
    EXPECT_TRUE(WaitUntil([&] { return added.load(); })) << removesSource;
    held.goes.count_down();
    adds.join();
    removes.join();
    Loudspeaker::Shared().Remove(&held);
    Loudspeaker::Shared().Remove(&feed);
  }
}

TEST_F(LoudspeakerTest, MixesItsSourcesWhileTheyAreThere) {
  const Played played;
  const auto hears = [&](short level) { return WaitUntil([&] { return played.Last() == level; }); };
  EXPECT_TRUE(WaitUntil([&] { return !played.Samples().empty(); }));
  EXPECT_TRUE(hears(0));
  const Level one(-1000);
  EXPECT_TRUE(hears(-1000));
  {
    const Level other(3000);
    EXPECT_TRUE(hears(2000));
  }
  EXPECT_TRUE(hears(-1000));
}

TEST_F(LoudspeakerTest, LimitsWhatIsTooLoud) {
  const Played played;
  const Level one(30000);
  const Level other(20000);
  EXPECT_TRUE(WaitUntil([&] { return played.Last() > 32000; }));
  for (const short sample : played.Samples()) EXPECT_GE(sample, 0);
}

TEST_F(LoudspeakerTest, AsksNobodyWhoWasRemoved) {
  Level stays(1);
  for (int i = 0; i < 20; ++i) {
    const auto source = std::make_unique<Level>(2);
    EXPECT_TRUE(WaitUntil([&] { return source->calls() > 0; }));
  }
  EXPECT_GT(stays.calls(), 0);
}

TEST_F(LoudspeakerTest, RunsOnlyWhileItIsNeeded) {
  {
    const Level source(1);
    EXPECT_TRUE(WaitUntil([&] { return source.calls() > 3; }));
  }
  const uint64_t blocks = Loudspeaker::Shared().Device().Blocks();
  PlayFeed feed(PlayFeed::What::kPlayed, {16000, 1});
  Loudspeaker::Shared().Add(&feed);  // A feed follows, but asks for nothing.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(Loudspeaker::Shared().Device().Blocks(), blocks);
  Loudspeaker::Shared().Remove(&feed);
}

TEST_F(LoudspeakerTest, TellsWhichPartGoesIntoTheMicrophonePath) {
  struct Follower : desktop::PlayListener {
    void OnPlayed(const PlayedBlock& block) override {
      feedback = block.feedback != nullptr ? block.feedback[0] : 0;
      replaces = block.replacesMicrophone;
      ++blocks;
    }
    std::atomic<int> feedback = -1;
    std::atomic<bool> replaces = false;
    std::atomic<int> blocks = 0;
  } follower;
  const Level onlyHeard(100);
  const Level mixed(20, AudioSourceTypeMix);
  Loudspeaker::Shared().Add(&follower);
  EXPECT_TRUE(WaitUntil([&] { return follower.feedback == 20; }));
  EXPECT_FALSE(follower.replaces);
  {
    const Level replacing(3, AudioSourceTypeOuterPCM);
    EXPECT_TRUE(WaitUntil([&] { return follower.feedback == 23 && follower.replaces; }));
  }
  Loudspeaker::Shared().Remove(&follower);
}

// Hands a tone to a feed in blocks of 10 ms.
class Feeder {
 public:
  explicit Feeder(PlayFeed& feed) : m_feed(feed) {}

  void Put(int blocks) {
    for (int i = 0; i < blocks; ++i, m_at += 960) {
      m_feed.OnPlayed({&m_tone[m_at], nullptr, false, 480});
    }
  }

 private:
  PlayFeed& m_feed;
  const std::vector<short> m_tone = Tone(1000, 10000, 48000, 48000 * 5, 2);
  size_t m_at = 0;
};

TEST(PlayFeed, RidesOverBurstsOf60Ms) {
  PlayFeed feed(PlayFeed::What::kPlayed, {44100, 1});
  Feeder feeder(feed);
  std::vector<short> got;
  short block[441];
  feeder.Put(8);
  for (int burst = 0; burst < 60; ++burst) {
    for (int i = 0; i < 6; ++i) {
      EXPECT_TRUE(feed.Read(block, 441));
      got.insert(got.end(), block, block + 441);
    }
    feeder.Put(6);
  }
  const ToneFit fit = FitTone(got, 1000, 44100);
  EXPECT_NEAR(fit.amplitude, 10000, 10);
  EXPECT_LT(fit.residualDb, -75);
}

TEST(PlayFeed, IsSilentUntilEnoughWaitsAndAfterTheEnd) {
  PlayFeed feed(PlayFeed::What::kPlayed, {48000, 2});
  Feeder feeder(feed);
  short block[960];
  feeder.Put(7);
  EXPECT_FALSE(feed.Read(block, 480));
  EXPECT_THAT(block, Each(0));
  feeder.Put(1);
  for (int i = 0; i < 8; ++i) EXPECT_TRUE(feed.Read(block, 480));
  EXPECT_FALSE(feed.Read(block, 480));
  feeder.Put(1);
  EXPECT_FALSE(feed.Read(block, 480));
}

TEST(PlayFeed, SkipsWhatWaitsTooLong) {
  PlayFeed feed(PlayFeed::What::kPlayed, {48000, 2});
  Feeder feeder(feed);
  feeder.Put(150);  // More than it has room for.
  short block[960];
  int blocks = 0;
  while (feed.Read(block, 480)) ++blocks;
  EXPECT_EQ(blocks, 8);
}

}  // namespace
