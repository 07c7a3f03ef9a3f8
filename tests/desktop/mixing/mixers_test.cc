#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <numbers>
#include <thread>

#include "engine_api/mixing/audio_block_mixer.h"
#include "engine_api/mixing/audio_record_mixer.h"
#include "support/tone.h"

using testing::Each;
using testing::SizeIs;

namespace {

std::string Bytes(const std::vector<short>& samples) {
  return std::string(reinterpret_cast<const char*>(samples.data()), samples.size() * 2);
}

std::vector<short> Samples(const std::string& bytes) {
  std::vector<short> samples(bytes.size() / 2);
  if (!samples.empty()) memcpy(samples.data(), bytes.data(), samples.size() * 2);
  return samples;
}

// Every value that a sample can have, in an order without a pattern.
std::vector<short> AllValues() {
  std::vector<short> values(65536);
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<short>(i * 40503U);
  return values;
}

std::vector<short> MixBlocks(CAudioBlockMixer& mixer, std::vector<std::string> blocks) {
  AudioBlockList list;
  for (std::string& block : blocks) list.push_back(&block);
  std::string out = "what was there before";
  mixer.Process(list, out);
  return Samples(out);
}

zuwebrtc::AudioFrame Frame(const std::vector<short>& samples, int rate, int channels) {
  zuwebrtc::AudioFrame frame;
  std::copy(samples.begin(), samples.end(), frame.data_);
  frame.samples_per_channel_ = static_cast<int>(samples.size()) / channels;
  frame.sample_rate_hz_ = rate;
  frame.num_channels_ = channels;
  return frame;
}

void Push(AudioRecordMixer& mixer, const std::vector<short>& samples, int rate, int channels,
          unsigned source = 0) {
  mixer.PushAudioFrame(new zuwebrtc::AudioFrame(Frame(samples, rate, channels)), source);
}

std::vector<short> Fetch(AudioRecordMixer& mixer, const std::vector<short>& voice, int rate,
                         int channels) {
  zuwebrtc::AudioFrame frame = Frame(voice, rate, channels);
  mixer.GetMixedAudioFrame(frame);
  return std::vector<short>(frame.data_, frame.data_ + voice.size());
}

}  // namespace

TEST(CAudioBlockMixer, LetsOneSourcePassBitForBit) {
  CAudioBlockMixer mixer(160, 1);
  EXPECT_EQ(MixBlocks(mixer, {Bytes(AllValues())}), AllValues());
}

TEST(CAudioBlockMixer, SumsWhatFits) {
  CAudioBlockMixer mixer(160, 1);
  EXPECT_EQ(MixBlocks(mixer, {Bytes({1, -5, 30000}), Bytes({2, -6, 2000}), Bytes({0, 0, 767})}),
            (std::vector<short>{3, -11, 32767}));
}

TEST(CAudioBlockMixer, TakesTheShortestLengthAndNothingForNothing) {
  CAudioBlockMixer mixer(160, 1);
  EXPECT_THAT(MixBlocks(mixer, {Bytes({1, 2, 3}), Bytes({1, 2})}), SizeIs(2));
  EXPECT_THAT(MixBlocks(mixer, {}), SizeIs(0));
  EXPECT_THAT(MixBlocks(mixer, {""}), SizeIs(0));
}

TEST(CAudioBlockMixer, LimitsLoudSumsWithoutWrapping) {
  CAudioBlockMixer mixer(160, 1);
  const std::vector<short> loud = Tone(1000, 30000, 16000, 16000);
  const std::vector<short> mixed =
      MixBlocks(mixer, {Bytes(loud), Bytes(loud), Bytes(loud), Bytes(loud), Bytes(loud)});
  ASSERT_THAT(mixed, SizeIs(loud.size()));
  for (size_t i = 0; i < loud.size(); ++i) {
    if (std::abs(loud[i]) < 100) continue;
    ASSERT_EQ(mixed[i] > 0, loud[i] > 0) << "wrapped at " << i;
  }
  // A steady tone comes out at full scale and stays a tone.
  const ToneFit fit = FitTone(mixed, 1000, 16000);
  EXPECT_NEAR(20 * std::log10(fit.amplitude / 32767), 0, 0.3);
  EXPECT_LT(fit.residualDb, -35);
}

TEST(CAudioBlockMixer, ComesBackToUnityWithoutAStep) {
  CAudioBlockMixer mixer(160, 1);
  const std::vector<short> loud(1600, 30000);
  MixBlocks(mixer, {Bytes(loud), Bytes(loud)});
  const std::vector<short> alone = MixBlocks(mixer, {Bytes(std::vector<short>(44100, 10000))});
  EXPECT_GT(alone[0], 5000);
  for (size_t i = 1; i < alone.size(); ++i) ASSERT_LE(std::abs(alone[i] - alone[i - 1]), 10) << i;
  EXPECT_EQ(alone.back(), 10000);
}

TEST(CAudioBlockMixer, IsIndependentOfTheBlocksThatItsInputIsCutInto) {
  const std::vector<short> a = Tone(440, 25000, 16000, 3200);
  const std::vector<short> b = Tone(700, 25000, 16000, 3200);
  CAudioBlockMixer whole(160, 1);
  CAudioBlockMixer byBlocks(160, 1);
  std::vector<short> joined;
  for (size_t at = 0; at < a.size(); at += 160) {
    const auto part = [at](const std::vector<short>& samples) {
      return Bytes(std::vector<short>(&samples[at], &samples[at] + 160));
    };
    const std::vector<short> block = MixBlocks(byBlocks, {part(a), part(b)});
    joined.insert(joined.end(), block.begin(), block.end());
  }
  EXPECT_EQ(joined, MixBlocks(whole, {Bytes(a), Bytes(b)}));
}

TEST(CAudioBlockMixer, GivesBothChannelsTheSameGain) {
  CAudioBlockMixer mixer(160, 2);
  std::vector<short> loud;
  for (int i = 0; i < 400; ++i) loud.insert(loud.end(), {30000, 3000});
  const std::vector<short> mixed = MixBlocks(mixer, {Bytes(loud), Bytes(loud)});
  for (size_t i = 0; i < mixed.size(); i += 2) ASSERT_NEAR(mixed[i], 10 * mixed[i + 1], 10);
}

TEST(AudioRecordMixer, LetsTheVoicePassBitForBitWhenNothingIsPushed) {
  AudioRecordMixer mixer;
  const std::vector<short> voice = {-32768, 32767, 5, 0};
  EXPECT_EQ(Fetch(mixer, voice, 8000, 1), voice);
}

TEST(AudioRecordMixer, SumsVoiceAndPushedFramesInTheirOrder) {
  AudioRecordMixer mixer;
  Push(mixer, {1, 2}, 8000, 1);
  Push(mixer, {3, 4}, 8000, 1);
  Push(mixer, {10, 10}, 8000, 1, 7);
  EXPECT_EQ(Fetch(mixer, {100, 100}, 8000, 1), (std::vector<short>{111, 112}));
  EXPECT_EQ(Fetch(mixer, {100, 100}, 8000, 1), (std::vector<short>{103, 104}));
  EXPECT_EQ(Fetch(mixer, {100, 100}, 8000, 1), (std::vector<short>{100, 100}));
}

TEST(AudioRecordMixer, MixesByItsMode) {
  for (const auto& [mode, expected] :
       {std::pair(AudioSourceTypeMic, 100), std::pair(AudioSourceTypeOuterPCM, 7),
        std::pair(AudioSourceTypeMix, 107)}) {
    AudioRecordMixer mixer;
    mixer.SetMixerMode(mode);
    Push(mixer, {7, 7}, 8000, 1);
    EXPECT_THAT(Fetch(mixer, {100, 100}, 8000, 1), Each(expected)) << mode;
  }
}

TEST(AudioRecordMixer, KeepsAtMostFiftyFrames) {
  AudioRecordMixer mixer;
  for (short i = 1; i <= 60; ++i) Push(mixer, {i}, 8000, 1);
  EXPECT_THAT(Fetch(mixer, {0}, 8000, 1), Each(11));  // The oldest ten have gone.
}

TEST(AudioRecordMixer, TouchesNoMoreThanTheFrameCounts) {
  AudioRecordMixer mixer;
  Push(mixer, {5, 5, 5, 5}, 22050, 2);
  zuwebrtc::AudioFrame frame = Frame({1, 1}, 22050, 2);
  mixer.GetMixedAudioFrame(frame);
  EXPECT_EQ(frame.data_[1], 6);
  EXPECT_EQ(frame.data_[2], 0);
}

TEST(AudioRecordMixer, ConvertsFramesOfAnotherFormat) {
  AudioRecordMixer mixer;
  const std::vector<short> tone = Tone(1000, 10000, 16000, 16000);
  std::vector<short> mixed;
  for (size_t at = 0; at < tone.size(); at += 160) {
    Push(mixer, std::vector<short>(&tone[at], &tone[at] + 160), 16000, 1);
    const std::vector<short> block = Fetch(mixer, std::vector<short>(882, 0), 44100, 2);
    mixed.insert(mixed.end(), block.begin(), block.end());
  }
  const ToneFit fit = FitTone(mixed, 1000, 44100, 2, 1);
  EXPECT_NEAR(fit.amplitude, 10000, 20);
  EXPECT_LT(fit.residualDb, -70);
}

TEST(AudioRecordMixer, SurvivesFramesThatAreNone) {
  AudioRecordMixer mixer;
  mixer.PushAudioFrame(nullptr, 0);
  Push(mixer, {}, 0, 1);
  zuwebrtc::AudioFrame broken = Frame({1}, -5, 1);
  broken.samples_per_channel_ = 1 << 30;
  broken.num_channels_ = 1 << 20;
  mixer.PushAudioFrame(new zuwebrtc::AudioFrame(broken), 3);
  mixer.GetMixedAudioFrame(broken);
  EXPECT_THAT(Fetch(mixer, {9}, 8000, 1), Each(9));
}

// Every frame that was pushed comes out once, while another thread fetches.
TEST(AudioRecordMixer, LosesNothingBetweenTwoThreads) {
  constexpr int kFrames = 5'000;
  AudioRecordMixer mixer;
  mixer.SetMixerMode(AudioSourceTypeOuterPCM);
  std::atomic<int> pushed = 0;
  std::atomic<int> fetched = 0;
  std::thread pusher([&] {
    while (pushed < kFrames) {
      if (pushed - fetched > 40) {  // More than fifty would be dropped.
        std::this_thread::yield();
        continue;
      }
      Push(mixer, {1}, 8000, 1);
      ++pushed;
    }
  });
  while (fetched < kFrames) fetched += Fetch(mixer, {0}, 8000, 1)[0];
  pusher.join();
  EXPECT_EQ(Fetch(mixer, {0}, 8000, 1)[0], 0);
}
