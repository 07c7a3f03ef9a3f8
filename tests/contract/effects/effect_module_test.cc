#include <gmock/gmock.h>

#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/effects/frame_effect.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

Shorts Ramp(size_t samples) {
  Shorts ramp(samples);
  std::iota(ramp.begin(), ramp.end(), static_cast<short>(1));
  return ramp;
}

void ExpectResetState(const zuwebrtc::AudioFrame& frame) {
  EXPECT_EQ(frame.id_, -1);
  EXPECT_EQ(frame.timestamp_, 0U);
  EXPECT_EQ(frame.elapsed_time_ms_, -1);
  EXPECT_EQ(frame.ntp_time_ms_, -1);
  EXPECT_EQ(frame.speech_type_, zuwebrtc::kUndefined);
  EXPECT_EQ(frame.vad_activity_, zuwebrtc::kVadUnknown);
  EXPECT_EQ(frame.energy_, 0xffffffffU);
  EXPECT_TRUE(frame.interleaved_);
}

// Spoils every field, as a module may, and doubles the samples it was given.
uint32_t Spoil(zuwebrtc::AudioFrame& frame) {
  ExpectResetState(frame);
  frame.id_ = 5;
  frame.timestamp_ = 5;
  frame.elapsed_time_ms_ = frame.ntp_time_ms_ = 5;
  frame.speech_type_ = zuwebrtc::kPLC;
  frame.vad_activity_ = zuwebrtc::kVadActive;
  frame.energy_ = 5;
  frame.interleaved_ = false;
  for (int i = 0; i < frame.samples_per_channel_ * frame.num_channels_; ++i) frame.data_[i] *= 2;
  return 1;
}

Shorts Doubled(Shorts samples) {
  for (short& sample : samples) sample = static_cast<short>(2 * sample);
  return samples;
}

}  // namespace

TEST(TestEqReverb, SetsUpTheChainThenProcessesWholeFrames) {
  FakeEngine engine;
  engine.wavs["voice_record.wav"] = {16000, 1, Shorts(160 + 160 + 159, 1)};

  TestEqReverb();

  EXPECT_THAT(engine.calls, Transcript(R"(
      AudioKaraokeEffectModule#1()
      AudioKaraokeEffectModule#1.EnableDrc(true)
      AudioKaraokeEffectModule#1.EnableEqReverb(true)
      AudioKaraokeEffectModule#1.SetEqualizerEnable(true)
      AudioKaraokeEffectModule#1.SetEqGains({0, -5.7, 0, -4.6, 0, 4, 4, 3, 2, 1, 1.3}, true)
      AudioKaraokeEffectModule#1.EnableReverbFv3(true)
      AudioKaraokeEffectModule#1.SetReverbFv3Param(3.6, -17.7, 3, 0.8, 0.6, 0, 0.2, 2.1, 0.6, 16)
      AudioKaraokeEffectModule#1.EnableLimiter(true)
      AudioKaraokeEffectModule#1.SetLimiterParameter(0, -2, 7, 90, 0, 1, 1, 0, 0, 1, 0)
      WavReader#1(voice_record.wav)
      WavWriter#1(eqreverb.wav, 16000, 1)
      WavReader#1.ReadSamples(160) = 160
      AudioKaraokeEffectModule#1.Process(16000 Hz, 1, 160)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 160
      AudioKaraokeEffectModule#1.Process(16000 Hz, 1, 160)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 159  # Dropped.
      ~WavWriter#1
      ~WavReader#1
  )"));
}

TEST(TestEqReverb, LeavesItsModuleAlive) {
  FakeEngine engine;

  TestEqReverb();

  EXPECT_THAT(engine.live, ElementsAre(Pair("AudioKaraokeEffectModule", 1)));
}

TEST(TestEqReverb, GivesEachFrameInItsResetState) {
  FakeEngine engine;
  engine.wavs["voice_record.wav"] = {44100, 2, Ramp(3 * 882)};
  engine.script<FrameEffectScript>().process = Spoil;

  TestEqReverb();

  EXPECT_THAT(engine.CallsWith("Process(44100 Hz, 2, 441)"), SizeIs(3));
  EXPECT_EQ(engine.wavs["eqreverb.wav"].samples, Doubled(Ramp(3 * 882)));
}

TEST(TestEqReverb, DropsABlockThatIsAnsweredWithZero) {
  FakeEngine engine;
  engine.wavs["voice_record.wav"] = {8000, 1, Ramp(4 * 80)};
  int frame = 0;
  engine.script<FrameEffectScript>().process = [&](zuwebrtc::AudioFrame&) {
    return ++frame % 2 == 0 ? 7U : 0U;
  };

  TestEqReverb();

  const Shorts in = Ramp(4 * 80);
  Shorts expected(in.begin() + 80, in.begin() + 160);
  expected.insert(expected.end(), in.begin() + 240, in.end());
  EXPECT_EQ(engine.wavs["eqreverb.wav"].samples, expected);
  EXPECT_THAT(engine.CallsWith("printf"), IsEmpty());
}

// 441 are read, 440 go into the frame, 441 come out of it.
TEST(TestEqReverb, HasAGapInEveryBlockOf22050Stereo) {
  FakeEngine engine;
  engine.wavs["voice_record.wav"] = {22050, 2, Shorts(3 * 441, 9)};

  TestEqReverb();

  Shorts expected(3 * 441, 9);
  expected[440] = expected[881] = expected[1322] = 0;
  EXPECT_EQ(engine.wavs["eqreverb.wav"].samples, expected);
  EXPECT_THAT(engine.CallsWith("Process(22050 Hz, 2, 220)"), SizeIs(3));
}

TEST(TestEqReverb, WritesNoMoreThanAFrameHolds) {
  FakeEngine engine;
  engine.wavs["voice_record.wav"] = {192000, 4, Shorts(7680, 9)};

  TestEqReverb();

  EXPECT_EQ(engine.wavs["eqreverb.wav"].samples, Shorts(5292, 9));
}

TEST(TestEqReverb, WritesAnEmptyFileWithoutItsInput) {
  FakeEngine engine;

  TestEqReverb();

  EXPECT_THAT(engine.CallsWith("WavWriter"), Transcript(R"(
      WavWriter#1(eqreverb.wav, 0, 0)
      ~WavWriter#1
  )"));
  EXPECT_THAT(engine.CallsWith("Process("), IsEmpty());
}

TEST(TestAudioEffectModule, BoostsTheLowestBandOfWholeFrames) {
  FakeEngine engine;
  engine.wavs["input.wav"] = {44100, 2, Shorts(882 + 881, 1)};

  TestAudioEffectModule();

  EXPECT_THAT(engine.calls, Transcript(R"(
      AudioEffectModule#1()
      AudioEffectModule#1.SetEqualizerEnable(true)  # The two negative zeros stay negative.
      AudioEffectModule#1.SetEqGains({3, -0, 0, -0, 0, 0, 0, 0, 0, 0, 0}, true)
      WavReader#1(input.wav)
      WavWriter#1(effect_out.wav, 44100, 2)
      WavReader#1.ReadSamples(882) = 882
      AudioEffectModule#1.Process(44100 Hz, 2, 441)
      WavWriter#1.WriteSamples(882)
      WavReader#1.ReadSamples(882) = 881
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.live, ElementsAre(Pair("AudioEffectModule", 1)));
}

TEST(TestAudioEffectModule, WritesTheFrameWhateverTheModuleAnswers) {
  FakeEngine engine;
  engine.wavs["input.wav"] = {16000, 1, Ramp(2 * 160)};
  engine.script<FrameEffectScript>().process = [](zuwebrtc::AudioFrame& frame) {
    Spoil(frame);
    return 0U;
  };

  TestAudioEffectModule();

  EXPECT_EQ(engine.wavs["effect_out.wav"].samples, Doubled(Ramp(2 * 160)));
}

TEST(TestAudioEffectModule, HasAGapInEveryBlockOf22050Stereo) {
  FakeEngine engine;
  engine.wavs["input.wav"] = {22050, 2, Shorts(2 * 441, 9)};

  TestAudioEffectModule();

  Shorts expected(2 * 441, 9);
  expected[440] = expected[881] = 0;
  EXPECT_EQ(engine.wavs["effect_out.wav"].samples, expected);
}

TEST(TestAudioEffectModule, WritesAnEmptyFileWithoutItsInput) {
  FakeEngine engine;

  TestAudioEffectModule();

  EXPECT_THAT(engine.CallsWith("WavWriter"), Transcript(R"(
      WavWriter#1(effect_out.wav, 0, 0)
      ~WavWriter#1
  )"));
}
