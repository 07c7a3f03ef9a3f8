#include "engine_api/effects/audio_accelerate.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/voice.h"

using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

struct Release {
  void operator()(IAudioAccelerate* accelerator) const { accelerator->Destroy(); }
};
using Accelerator = std::unique_ptr<IAudioAccelerate, Release>;

// What comes out of calls of 1024 frames; `before` may change the settings ahead of each.
template <typename Before>
Shorts Play(IAudioAccelerate& accelerator, const Shorts& in, int rate, int channels,
            Before before) {
  const auto block = static_cast<size_t>(1024 * channels);
  Shorts out;
  for (size_t done = 0; done + block <= in.size(); done += block) {
    before(done / block);
    char bytes[4096];
    memcpy(bytes, &in[done], block * sizeof(short));
    const int frames = accelerator.Process(bytes, 1024, rate, channels, 16);
    EXPECT_GE(frames, 0);
    EXPECT_LE(frames, 1024);
    const size_t length = static_cast<size_t>(frames * channels);
    out.resize(out.size() + length);
    memcpy(out.data() + out.size() - length, bytes, length * sizeof(short));
  }
  return out;
}

Shorts Play(IAudioAccelerate& accelerator, const Shorts& in, int rate, int channels) {
  return Play(accelerator, in, rate, channels, [](size_t) {});
}

Accelerator Enabled(double percent) {
  Accelerator accelerator(CreateAudioAccelerate());
  accelerator->SetEnabled(true);
  accelerator->SetAccelerateRate(percent);
  return accelerator;
}

TEST(AudioAccelerate, ChangesNoByteUntilItIsEnabled) {
  const Accelerator accelerator(CreateAudioAccelerate());
  accelerator->SetAccelerateRate(25);
  const Shorts in = SungNote(220, 44100, 2, 2);
  const Shorts out = Play(*accelerator, in, 44100, 2);
  EXPECT_EQ(out, Shorts(in.begin(), in.begin() + static_cast<std::ptrdiff_t>(out.size())));
  EXPECT_EQ(out.size(), in.size() / 2048 * 2048);
  EXPECT_FALSE(accelerator->IsActive());
}

TEST(AudioAccelerate, TakesTheStatedShareOfAMinuteAtTheSamePitch) {
  const Shorts in = SungNote(220, 44100, 60, 2);
  for (const double percent : {10.0, 25.0, 60.0, 100.0}) {
    const Shorts out = Play(*Enabled(percent), in, 44100, 2);
    const double ratio = static_cast<double>(out.size()) / static_cast<double>(in.size());
    EXPECT_NEAR(ratio * (1 + percent / 100), 1, 0.01) << percent;
    EXPECT_NEAR(CentsOff(Shorts(out.begin(), out.begin() + 441000), 220, 44100, 2), 0, 5);
  }
}

TEST(AudioAccelerate, WorksAtEveryRateMonoAndStereo) {
  for (const int rate : {8000, 16000, 22050, 48000}) {
    for (const int channels : {1, 2}) {
      const Shorts in = SungNote(220, rate, 8, channels);
      const Shorts out = Play(*Enabled(25), in, rate, channels);
      const double ratio = static_cast<double>(out.size()) / static_cast<double>(in.size());
      EXPECT_NEAR(ratio, 0.8, 0.015) << rate << " Hz, " << channels;
      EXPECT_NEAR(CentsOff(out, 220, rate, channels), 0, 5);
    }
  }
}

// A silence in the one channel stays where it is in the other.
TEST(AudioAccelerate, KeepsStereoInStep) {
  const Shorts mono = Babble(44100, 10);
  Shorts in;
  for (const short sample : mono) in.insert(in.end(), {sample, static_cast<short>(sample / 2)});
  const Shorts out = Play(*Enabled(40), in, 44100, 2);
  for (size_t i = 0; i + 1 < out.size(); i += 2) ASSERT_NEAR(out[i + 1], out[i] / 2.0, 1.01);
}

TEST(AudioAccelerate, HearsChannelsThatCancelEachOther) {
  const Shorts mono = Babble(16000, 4);
  const Shorts expected = Play(*Enabled(25), mono, 16000, 1);
  const Shorts out = Play(*Enabled(25), Interleaved(mono, Opposed(mono)), 16000, 2);
  EXPECT_EQ(Channel(out, 2, 0), expected);
  EXPECT_EQ(Channel(out, 2, 1), Opposed(expected));
}

TEST(AudioAccelerate, SwitchesOnAndOffWithoutAJump) {
  const Accelerator accelerator(CreateAudioAccelerate());
  accelerator->SetAccelerateRate(25);
  const Shorts in = SungNote(220, 44100, 12, 2);
  const Shorts out = Play(*accelerator, in, 44100, 2, [&](size_t block) {
    if (block % 50 == 0) accelerator->SetEnabled(block / 50 % 2 == 1);
  });
  EXPECT_LE(LargestStep(out, 2), 1.02 * LargestStep(in, 2));
  EXPECT_NEAR(CentsOff(out, 220, 44100, 2), 0, 5);
}

TEST(AudioAccelerate, GivesWholeBlocksAgainOnceItIsOff) {
  const Accelerator accelerator = Enabled(25);
  const Shorts in = SungNote(220, 44100, 4, 2);
  std::vector<int> frames;
  for (size_t block = 0; block < 80; ++block) {
    if (block == 40) accelerator->SetEnabled(false);
    char bytes[4096];
    memcpy(bytes, &in[block * 2048], sizeof bytes);
    frames.push_back(accelerator->Process(bytes, 1024, 44100, 2, 16));
  }
  EXPECT_TRUE(accelerator->IsActive());  // What waits inside goes on waiting.
  EXPECT_THAT(std::vector<int>(frames.begin() + 40, frames.end()), testing::Each(1024));
  EXPECT_LT(*std::min_element(frames.begin(), frames.begin() + 40), 1024);
}

TEST(AudioAccelerate, ClampsThePercentage) {
  const Shorts in = SungNote(220, 16000, 10);
  const Shorts twice = Play(*Enabled(1000), in, 16000, 1);
  EXPECT_NEAR(static_cast<double>(twice.size()) / static_cast<double>(in.size()), 0.5, 0.01);
  const Shorts once = Play(*Enabled(-50), in, 16000, 1);
  EXPECT_EQ(once, Shorts(in.begin(), in.begin() + static_cast<std::ptrdiff_t>(once.size())));
  CapturedStderr log;
  const Accelerator accelerator = Enabled(0);
  accelerator->SetAccelerateRate(std::numeric_limits<double>::quiet_NaN());
  EXPECT_THAT(log.Lines(), SizeIs(1));
  EXPECT_EQ(Play(*accelerator, in, 16000, 1), once);
}

TEST(AudioAccelerate, PassesWhatItCannotDo) {
  const Shorts in = SungNote(220, 44100, 1, 2);
  for (const auto& [rate, channels, size] : {std::tuple{192000, 2, 16},
                                             {44100, 20, 16},
                                             {44100, 3, 16},
                                             {44100, 0, 16},
                                             {0, 2, 16},
                                             {44100, 2, 24}}) {
    CapturedStderr log;
    const Accelerator accelerator = Enabled(50);
    for (int call = 0; call < 3; ++call) {
      char bytes[4096];
      memcpy(bytes, in.data(), sizeof bytes);
      EXPECT_EQ(accelerator->Process(bytes, 50, rate, channels, size), 50);
      EXPECT_EQ(memcmp(bytes, in.data(), sizeof bytes), 0);
    }
    EXPECT_THAT(log.Lines(), SizeIs(1)) << rate << ", " << channels << ", " << size;
  }
}

TEST(AudioAccelerate, DoesTheSameToIntegersOf32Bits) {
  const Accelerator words = Enabled(25);
  const Accelerator shorts = Enabled(25);
  const Shorts in = SungNote(220, 16000, 4);
  for (size_t done = 0; done + 160 <= in.size(); done += 160) {
    Shorts block(in.begin() + static_cast<std::ptrdiff_t>(done),
                 in.begin() + static_cast<std::ptrdiff_t>(done + 160));
    std::vector<int> wide(block.begin(), block.end());
    const int frames = shorts->Process(reinterpret_cast<char*>(block.data()), 160, 16000, 1, 2);
    ASSERT_EQ(words->Process(wide.data(), 160, 16000, 1, 16, 160), frames);
    for (size_t i = 0; i < static_cast<size_t>(frames); ++i) ASSERT_EQ(wide[i], block[i]);
  }
}

TEST(AudioAccelerate, LeavesABlockAloneThatIsLongerThanItsRoom) {
  const Accelerator accelerator = Enabled(25);
  // Beyond 16 bits, so that it changes when it is done.
  std::vector<int> block(320, 40000);
  const std::vector<int> before = block;
  for (const int room : {0, 160, 318, 319}) {
    EXPECT_EQ(accelerator->Process(block.data(), 160, 16000, 2, 16, room), 160) << room;
    EXPECT_EQ(block, before) << room;
  }
  EXPECT_EQ(accelerator->Process(block.data(), 160, 16000, 2, 16, 320), 160);
  EXPECT_THAT(block, testing::Each(32767)) << "one that fits is not";
}

// Where nothing alike is within reach a sound changes over gradually: slow waves whose one half is
// joined to the other.
TEST(AudioAccelerate, FadesBetweenOpposites) {
  Shorts in;
  for (int i = 0; i < 16000 * 4; ++i) {
    const double phase = 2 * M_PI * i / (16000 * 0.17);
    in.push_back(static_cast<short>(std::lrint(10000 * std::tanh(10 * std::sin(phase)))));
  }
  const Shorts out = Play(*Enabled(100), in, 16000, 1);
  EXPECT_LT(LargestStep(out), 2 * LargestStep(in));
}

// What waits of another format is no sound of this one.
TEST(AudioAccelerate, StartsAnewWithEachFormat) {
  const Shorts mono = SungNote(220, 16000, 1);
  const Shorts stereo = SungNote(330, 16000, 1, 2);
  const Shorts fast = SungNote(220, 8000, 1);
  const Accelerator accelerator = Enabled(25);
  EXPECT_EQ(Play(*accelerator, mono, 16000, 1), Play(*Enabled(25), mono, 16000, 1));
  EXPECT_EQ(Play(*accelerator, stereo, 16000, 2), Play(*Enabled(25), stereo, 16000, 2));
  EXPECT_EQ(Play(*accelerator, fast, 8000, 1), Play(*Enabled(25), fast, 8000, 1));
}

// Of a stream without an end no more is kept than a join looks back at.
TEST(AudioAccelerate, AsksForNoMemoryOnceItRuns) {
  const Shorts in = SungNote(220, 16000, 20);
  const Accelerator accelerator = Enabled(25);
  Shorts block(in.begin(), in.begin() + 160);
  const auto run = [&](size_t begin, size_t end) {
    for (size_t at = begin; at + 160 <= end; at += 160) {
      std::copy_n(&in[at], 160, block.begin());
      accelerator->Process(reinterpret_cast<char*>(block.data()), 160, 16000, 1, 16);
    }
  };
  run(0, 16000 * 2);
  const size_t before = AllocationCount();
  run(16000 * 2, in.size());
  EXPECT_EQ(AllocationCount(), before);
}

// A period of 12.5 ms is found when it is looked for as far as 12 ms before and after.
TEST(AudioAccelerate, HoldsTheLevelOfALowVoice) {
  for (const double pitch : {82.0, 91.0, 104.0}) {
    const Shorts in = SungNote(pitch, 16000, 6);
    const std::vector<double> out = ToDoubles(Play(*Enabled(25), in, 16000, 1));
    const auto period = static_cast<size_t>(std::lround(2 * 16000 / pitch));
    double lowest = 1, highest = 0;
    for (size_t at = 16000; at + period <= 64000; at += 40) {
      const double level = Rms({&out[at], period});
      lowest = std::min(lowest, level);
      highest = std::max(highest, level);
    }
    EXPECT_LT(Decibels(highest / lowest), 0.3) << pitch;
  }
}

TEST(AudioAccelerate, ForgetsItsSamplesWhenFlushed) {
  const Accelerator accelerator = Enabled(25);
  const Shorts in = SungNote(220, 16000, 2);
  const Shorts first = Play(*accelerator, in, 16000, 1);
  accelerator->Flush();
  EXPECT_TRUE(accelerator->GetEnabled());
  EXPECT_EQ(Play(*accelerator, in, 16000, 1), first);
}

}  // namespace
