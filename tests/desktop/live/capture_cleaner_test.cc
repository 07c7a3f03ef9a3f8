#include "desktop/live/capture_cleaner.h"

#include <gmock/gmock.h>

#include "support/talk.h"
#include "support/voice.h"

namespace {

constexpr size_t kBlock = 480;      // 10 ms at 48 kHz.
constexpr size_t kEchoBlocks = 12;  // How late the microphone hears the loudspeaker.

// What a call hears of its own loudspeaker, half as loud, in the last two of five seconds.
double EchoLeft(bool knowsWhatIsPlayed) {
  desktop::CaptureCleaner cleaner({48000, 1});
  const std::vector<short> talk = Talk(48000, 5, 1);
  std::vector<short> played(2 * kBlock);
  std::vector<short> heard(kBlock);
  std::vector<short> left;
  for (size_t at = 0; at + kBlock <= talk.size(); at += kBlock) {
    for (size_t i = 0; i < kBlock; ++i) played[2 * i] = played[2 * i + 1] = talk[at + i];
    if (knowsWhatIsPlayed) cleaner.FarEnd().OnPlayed({played.data(), nullptr, false, kBlock});
    for (size_t i = 0; i < kBlock && at >= kEchoBlocks * kBlock; ++i) {
      heard[i] = static_cast<short>(talk[at - kEchoBlocks * kBlock + i] / 2);
    }
    cleaner.Process(heard.data(), kBlock);
    if (at >= 3U * 48000) left.insert(left.end(), heard.begin(), heard.end());
  }
  return Level(left);
}

TEST(CaptureCleaner, TakesAwayTheEchoOfWhatIsPlayed) {
  EXPECT_LT(EchoLeft(true), 0.1 * EchoLeft(false));
}

TEST(CaptureCleaner, TakesAnOffsetAway) {
  desktop::CaptureCleaner cleaner({16000, 1});
  std::vector<short> samples(32000, 3000);
  for (size_t at = 0; at < samples.size(); at += 160) cleaner.Process(&samples[at], 160);
  for (size_t i = 16000; i < samples.size(); ++i) ASSERT_NEAR(samples[i], 0, 3);
}

TEST(CaptureCleaner, TakesTheOffsetOfEachChannelAway) {
  desktop::CaptureCleaner cleaner({16000, 2});
  std::vector<short> samples;
  for (int i = 0; i < 32000; ++i) samples.insert(samples.end(), {3000, -500});
  for (size_t at = 0; at < samples.size(); at += 320) cleaner.Process(&samples[at], 160);
  for (size_t i = 32000; i < samples.size(); ++i) ASSERT_NEAR(samples[i], 0, 3);
}

}  // namespace
