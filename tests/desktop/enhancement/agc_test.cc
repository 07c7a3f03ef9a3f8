#include "engine_api/enhancement/agc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "support/captured_stderr.h"
#include "support/talk.h"
#include "support/tone.h"

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = 160;

class Agc {
 public:
  explicit Agc(int16_t mode, WebRtcAgcConfig config = {3, 0, 1}) {
    EXPECT_EQ(WebRtcAgc_Create(&m_handle), 0);
    EXPECT_EQ(WebRtcAgc_Init(m_handle, 0, 255, mode, kRate), 0);
    EXPECT_EQ(WebRtcAgc_set_config(m_handle, config), 0);
  }
  ~Agc() { EXPECT_EQ(WebRtcAgc_Free(m_handle), 0); }
  Agc(const Agc&) = delete;
  Agc& operator=(const Agc&) = delete;

  // In place, block by block; the microphone's volume is fed back when it is followed.
  Samples Run(Samples samples, bool follow = false) {
    for (size_t at = 0; at + kBlock <= samples.size(); at += kBlock) {
      int16_t* const block = &samples[at];
      uint8_t saturated = 0;
      EXPECT_EQ(WebRtcAgc_Process(m_handle, &block, 1, kBlock, &block, follow ? volume : 0, &volume,
                                  0, &saturated),
                0);
      saturations += saturated;
    }
    return samples;
  }

  void* Handle() { return m_handle; }
  int32_t volume = 100;
  int saturations = 0;

 private:
  void* m_handle = nullptr;
};

int Peak(const Samples& samples) {
  int peak = 0;
  for (const short sample : samples) peak = std::max(peak, std::abs(static_cast<int>(sample)));
  return peak;
}

TEST(Agc, BringsSpeechOfAnyLevelToOneLevel) {
  double loudest = -100;
  double quietest = 0;
  for (const double level : {-50.0, -35.0, -25.0, -16.0}) {
    Agc agc(kAgcModeAdaptiveDigital);
    const Samples out = agc.Run(Talk(kRate, 10, 1, level));
    const double now = LevelDb(out, kRate, 5, 10);
    loudest = std::max(loudest, now);
    quietest = std::min(quietest, now);
    EXPECT_LT(Peak(out), 32000) << level;
  }
  EXPECT_LT(loudest - quietest, 3);
  EXPECT_GT(quietest, -30);
}

TEST(Agc, AmplifiesInTheAdaptiveModeWithoutCompressionGain) {
  const Samples quiet = Talk(kRate, 6, 2, -45);
  Agc agc(kAgcModeAdaptiveDigital, {3, 0, 1});
  EXPECT_GT(LevelDb(agc.Run(quiet), kRate, 4, 6), LevelDb(quiet, kRate, 4, 6) + 12);
}

TEST(Agc, KeepsPausesQuiet) {
  Samples speech = Talk(kRate, 12, 3, -30);
  std::fill(speech.begin() + 8 * kRate, speech.begin() + 10 * kRate, short{0});
  const Samples noisy = Sum(speech, Hiss(kRate, 12, 4, -65));
  const Samples out = Agc(kAgcModeAdaptiveDigital).Run(noisy);
  EXPECT_GT(LevelDb(out, kRate, 5, 8) - LevelDb(out, kRate, 8.1, 9.9), 22);
}

TEST(Agc, HasNoLag) {
  const Samples speech = Talk(kRate, 3, 5, -40);
  EXPECT_EQ(FindLag(speech, Agc(kAgcModeAdaptiveDigital).Run(speech), 300).samples, 0);
}

TEST(Agc, LimitsToItsTargetWithoutLagAndWithoutClicks) {
  Samples samples = Talk(kRate, 5, 6, -50);
  const Samples burst = Tone(440, 30000, kRate, kRate);
  samples.insert(samples.end(), burst.begin(), burst.end());
  const Samples out = Agc(kAgcModeAdaptiveDigital).Run(samples);
  EXPECT_LE(Peak(out), 23198);  // 3 dB under full scale.
  const Samples settled(out.end() - kRate / 2, out.end());
  EXPECT_LT(FitTone(settled, 440, kRate).residualDb, -25);
}

TEST(Agc, AppliesTheCompressionGainInTheFixedMode) {
  const Samples tone = Tone(500, 1000, kRate, kRate);
  const Samples out = Agc(kAgcModeFixedDigital, {3, 12, 1}).Run(tone);
  EXPECT_NEAR(FitTone(out, 500, kRate).amplitude, 3981, 20);
}

TEST(Agc, ChangesNothingInTheUnchangedMode) {
  const Samples speech = Talk(kRate, 2, 7, -50);
  EXPECT_EQ(Agc(kAgcModeUnchanged).Run(speech), speech);
}

TEST(Agc, AsksForMoreVolumeOfAQuietMicrophoneInTheAnalogMode) {
  Agc quiet(kAgcModeAdaptiveAnalog);
  quiet.Run(Talk(kRate, 3, 8, -50), true);
  EXPECT_GT(quiet.volume, 150);
  Agc loud(kAgcModeAdaptiveAnalog);
  loud.Run(Talk(kRate, 3, 9, -8), true);
  EXPECT_LT(loud.volume, 60);
  Agc digital(kAgcModeAdaptiveDigital);
  digital.Run(Talk(kRate, 1, 10, -50), true);
  EXPECT_EQ(digital.volume, 100);
}

// The knob of a microphone has two ends.
TEST(Agc, AsksForNoVolumeThatThereIsNot) {
  Agc quiet(kAgcModeAdaptiveAnalog);
  quiet.volume = 250;
  quiet.Run(Talk(kRate, 3, 8, -50), true);
  EXPECT_EQ(quiet.volume, 255);
  Agc loud(kAgcModeAdaptiveAnalog);
  loud.volume = 5;
  loud.Run(Talk(kRate, 3, 9, -8), true);
  EXPECT_EQ(loud.volume, 0);
}

TEST(Agc, WarnsOfSaturation) {
  Samples samples(kBlock * 4);
  samples[200] = 32767;
  samples[500] = -32768;
  Agc agc(kAgcModeAdaptiveDigital);
  agc.Run(samples);
  EXPECT_EQ(agc.saturations, 2);
}

TEST(Agc, LearnsNothingOfEcho) {
  Agc agc(kAgcModeAdaptiveDigital);
  const Samples quiet = Talk(kRate, 3, 12, -45);
  Samples out = quiet;
  for (size_t at = 0; at + kBlock <= out.size(); at += kBlock) {
    int16_t* const block = &out[at];
    int32_t volume = 0;
    uint8_t saturated = 0;
    EXPECT_EQ(WebRtcAgc_Process(agc.Handle(), &block, 1, kBlock, &block, 0, &volume, 1, &saturated),
              0);
  }
  EXPECT_EQ(out, quiet);
}

TEST(VirtualMic, KeepsItsLevelInRange) {
  Agc agc(kAgcModeAdaptiveDigital);
  Samples block = Tone(500, 8000, kRate, kBlock);
  int16_t* const band = block.data();
  int32_t level = -1;
  EXPECT_EQ(WebRtcAgc_VirtualMic(agc.Handle(), &band, 1, kBlock, 300, &level), 0);
  EXPECT_EQ(level, 255);
  EXPECT_EQ(WebRtcAgc_VirtualMic(agc.Handle(), &band, 1, kBlock, -5, &level), 0);
  EXPECT_EQ(level, 0);
}

// 0 stands for a microphone that is not known yet: it is taken to be in the middle.
TEST(VirtualMic, LeavesABlockAsItIsAtLevel0) {
  Agc agc(kAgcModeAdaptiveDigital);
  Samples block = Tone(500, 8000, kRate, kBlock);
  const Samples before = block;
  int16_t* const band = block.data();
  int32_t level = -1;
  EXPECT_EQ(WebRtcAgc_VirtualMic(agc.Handle(), &band, 1, kBlock, 0, &level), 0);
  EXPECT_EQ(block, before);
  EXPECT_EQ(level, 127);
  EXPECT_EQ(WebRtcAgc_VirtualMic(agc.Handle(), &band, 1, kBlock, 1, &level), 0);
  EXPECT_EQ(level, 1);
  EXPECT_LT(Peak(block), 1000);
}

TEST(VirtualMic, IsAVolumeControl) {
  Agc agc(kAgcModeAdaptiveDigital);
  int peaks[2] = {};
  for (const int32_t wanted : {60, 250}) {
    Samples block(kBlock, 1000);
    int16_t* const band = block.data();
    int32_t level = -1;
    EXPECT_EQ(WebRtcAgc_VirtualMic(agc.Handle(), &band, 1, kBlock, wanted, &level), 0);
    EXPECT_EQ(level, wanted);
    peaks[wanted > 100 ? 1 : 0] = Peak(block);
  }
  EXPECT_LT(peaks[0], 500);
  EXPECT_GT(peaks[1], 5000);
}

TEST(Agc, RefusesWhatIsNotAsSaid) {
  void* handle = nullptr;
  int16_t samples[kBlock] = {};
  int16_t* const band = samples;
  int32_t level = 0;
  uint8_t saturated = 0;
  EXPECT_EQ(WebRtcAgc_Create(nullptr), -1);
  EXPECT_EQ(WebRtcAgc_Create(&handle), 0);
  const auto process = [&](void* of, int16_t bands, int16_t count) {
    return WebRtcAgc_Process(of, &band, bands, count, &band, 0, &level, 0, &saturated);
  };
  EXPECT_EQ(process(handle, 1, kBlock), -1);
  EXPECT_EQ(WebRtcAgc_set_config(handle, {3, 0, 1}), -1);
  {
    CapturedStderr log;
    for (const uint32_t rate : {0U, 11025U, 24000U, 44100U, 96000U}) {
      EXPECT_EQ(WebRtcAgc_Init(handle, 0, 255, kAgcModeAdaptiveDigital, rate), -1) << rate;
    }
    EXPECT_EQ(WebRtcAgc_Init(handle, 0, 255, 4, kRate), -1);
    EXPECT_EQ(WebRtcAgc_Init(handle, 255, 0, kAgcModeAdaptiveDigital, kRate), -1);
    EXPECT_EQ(log.Lines().size(), 7u);
  }
  EXPECT_EQ(WebRtcAgc_Init(handle, 0, 255, kAgcModeAdaptiveDigital, kRate), 0);
  {
    CapturedStderr log;
    EXPECT_EQ(WebRtcAgc_set_config(handle, {40, 0, 1}), -1);
    EXPECT_EQ(WebRtcAgc_set_config(handle, {3, 91, 1}), -1);
    EXPECT_EQ(log.Lines().size(), 2u);
  }
  EXPECT_EQ(WebRtcAgc_set_config(nullptr, {3, 0, 1}), -1);
  EXPECT_EQ(WebRtcAgc_VirtualMic(handle, &band, 1, kBlock, 0, nullptr), -1);
  EXPECT_EQ(process(handle, 2, kBlock), -1);
  EXPECT_EQ(process(handle, 1, 80), -1);
  EXPECT_EQ(process(nullptr, 1, kBlock), -1);
  EXPECT_EQ(WebRtcAgc_VirtualMic(nullptr, &band, 1, kBlock, 0, &level), -1);
  EXPECT_EQ(WebRtcAgc_Init(nullptr, 0, 255, 2, kRate), -1);
  EXPECT_EQ(WebRtcAgc_Free(nullptr), -1);
  EXPECT_EQ(WebRtcAgc_Free(handle), 0);
}

}  // namespace
