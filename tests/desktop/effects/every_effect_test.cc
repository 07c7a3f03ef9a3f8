// What holds for every effect that works sample by sample, whatever it does to the sound.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "engine_api/effects/audio_dsp_processor.h"
#include "engine_api/effects/audio_effect_module.h"
#include "engine_api/effects/audio_karaoke_effect_module.h"
#include "engine_api/effects/drc.h"
#include "engine_api/effects/equalizer.h"
#include "engine_api/effects/multiband_drc.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/tiny_numbers.h"
#include "support/tone.h"

namespace {

using Shorts = std::vector<short>;

// Processes a block of interleaved samples in place.
using Effect = std::function<void(short* samples, int frames, int rate, int channels)>;

template <typename Module>
Effect OverFrames(std::shared_ptr<Module> module) {
  return [module](short* samples, int frames, int rate, int channels) {
    zuwebrtc::AudioFrame frame;
    const auto count = std::min<size_t>(static_cast<size_t>(frames * channels), 5292);
    std::copy_n(samples, count, frame.data_);
    frame.sample_rate_hz_ = rate;
    frame.num_channels_ = channels;
    frame.samples_per_channel_ = frames;
    module->Process(frame);
    std::copy_n(frame.data_, count, samples);
  };
}

Effect Equaliser() {
  std::shared_ptr<IEqualizer> equalizer(CreateEqualizer(), [](IEqualizer* it) { it->Destroy(); });
  for (int band = 0; band < 11; ++band) equalizer->SetEqGain(band, band % 2 == 0 ? 24.0f : -24.0f);
  equalizer->SetEnabled(true);
  return [equalizer](short* samples, int frames, int rate, int channels) {
    equalizer->Process(reinterpret_cast<char*>(samples), frames, rate, channels, 2);
  };
}

Effect EffectModule() {
  auto module = std::make_shared<AudioEffectModule>();
  EqGains gains = {6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6};
  module->SetEqualizerEnable(true);
  module->SetEqGains(gains, true);
  return OverFrames(module);
}

Effect DspProcessor() {
  auto processor = std::make_shared<CAudioDspProcessor>();
  processor->SetReverbExEnable(true);
  return [processor](short* samples, int frames, int rate, int channels) {
    processor->Process(reinterpret_cast<char*>(samples), frames, rate, channels, 16);
  };
}

Effect Karaoke() {
  auto module = std::make_shared<AudioKaraokeEffectModule>();
  EqGains gains = {0, -5.7f, 0, -4.6f, 0, 4, 4, 3, 2, 1, 1.3f};
  module->EnableDrc(true);
  module->SetEqualizerEnable(true);
  module->SetEqGains(gains, true);
  module->EnableReverbFv3(true);
  module->SetReverbFv3Param({3.6f, -17.7f, 3, 0.8f, 0.6f, 0, 0.2f, 2.1f, 0.6f, 16});
  module->EnableLimiter(true);
  module->SetLimiterParameter({0, -2, 7, 90, 0, 1, 1, 0, 0, 1, 0});
  return OverFrames(module);
}

Effect Compressor() {
  auto drc = std::make_shared<Drc>();
  return [drc](short* samples, int frames, int /*rate*/, int channels) {
    drc->Process(samples, channels, frames);
  };
}

Effect Multiband() {
  auto drc = std::make_shared<MultibandDrc>();
  drc->Init();
  return OverFrames(drc);
}

struct Case {
  std::string name;
  Effect (*make)();
};

class EveryEffect : public testing::TestWithParam<Case> {
 protected:
  Effect Make() const { return GetParam().make(); }

  TinyNumbers m_tinyNumbers;
};

// A block of a Drc lasts 10 ms, whatever it holds; those of the others may have any length.
using EffectOfAnyBlock = EveryEffect;

Shorts Processed(const Effect& effect, Shorts samples, int rate, int channels, int frames) {
  const auto block = static_cast<size_t>(frames * channels);
  for (size_t at = 0; at < samples.size(); at += block) {
    const size_t left = std::min(block, samples.size() - at);
    effect(&samples[at], static_cast<int>(left) / channels, rate, channels);
  }
  return samples;
}

Shorts Noise(int rate, int channels, double peak) {
  return ToShorts(WhiteNoise(rate / 2 * channels, peak, 1));
}

TEST_P(EveryEffect, TakesEveryRateMonoAndStereo) {
  for (const int rate : {8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000}) {
    for (const int channels : {1, 2}) {
      const Effect effect = Make();
      const Shorts in = Noise(rate / 100 * 100, channels, 0.5);
      const Shorts out = Processed(effect, in, rate, channels, rate / 100);
      EXPECT_NE(out, in) << rate << " x " << channels;
      const std::vector<double> sound = ToDoubles(out);
      EXPECT_GT(Rms({sound.data() + sound.size() / 2, sound.size() / 2}), 0.005);
    }
  }
}

TEST_P(EveryEffect, KeepsSilenceSilent) {
  for (const int channels : {1, 2}) {
    const Shorts silence(88200);
    EXPECT_EQ(Processed(Make(), silence, 44100, channels, 441), silence);
  }
}

// A sum beyond full scale that wraps round jumps from one end of the scale to the other.
TEST_P(EveryEffect, ClipsAndDoesNotWrapRound) {
  const Shorts out = Processed(Make(), Tone(40, 32767, 44100, 44100), 44100, 1, 441);
  for (size_t i = 1; i < out.size(); ++i) ASSERT_LT(std::abs(out[i] - out[i - 1]), 20000) << i;
  EXPECT_GT(Peak(ToDoubles(out)), 0.1);
}

TEST_P(EffectOfAnyBlock, GivesTheSameHoweverTheSoundIsCut) {
  const Shorts in = ToShorts(BurstNoise(44100, 0.5, 44100, 1));
  const Shorts whole = Processed(Make(), in, 44100, 2, 441);
  for (const int frames : {1, 7, 100, 255, 256, 257, 1000, 2646}) {
    EXPECT_EQ(Processed(Make(), in, 44100, 2, frames), whole) << frames;
  }
}

TEST_P(EveryEffect, IsTheSameEveryTime) {
  const Shorts in = Noise(44100, 2, 0.5);
  EXPECT_EQ(Processed(Make(), in, 44100, 2, 441), Processed(Make(), in, 44100, 2, 441));
}

TEST_P(EveryEffect, GivesAMonoSoundWhatAStereoSoundOfTwoAlikeGets) {
  const Shorts mono = Noise(44100, 1, 0.2);
  const Shorts both = Processed(Make(), Interleaved(mono, mono), 44100, 2, 441);
  const double left = Rms(ToDoubles(Channel(both, 2, 0)));
  EXPECT_NEAR(Decibels(left / Rms(ToDoubles(Processed(Make(), mono, 44100, 1, 441)))), 0, 0.5);
}

TEST_P(EveryEffect, SurvivesFormatsThatAreNone) {
  CapturedStderr log;
  const Effect effect = Make();
  Shorts samples(20 * 1920, 20000);
  for (const int rate : {-8000, 0, 1, 7999, 8000, 192000, 192001, 2000000000}) {
    for (const int channels : {-1, 0, 1, 2, 3, 20}) {
      for (const int frames : {-1, 0, 1, 10, 1920}) effect(samples.data(), frames, rate, channels);
    }
  }
  // A Drc takes all of these.
  if (GetParam().name == "Drc") {
    EXPECT_EQ(log.Text(), "");
  } else {
    ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
    EXPECT_NE(log.Text().find(GetParam().name + ": cannot process"), std::string::npos)
        << log.Text();
  }
}

TEST_P(EveryEffect, WorksAt192Kilohertz) {
  const Shorts in = Noise(192000, 2, 0.5);
  EXPECT_NE(Processed(Make(), in, 192000, 2, 1920), in);
}

TEST_P(EveryEffect, AllocatesNothingPerBlock) {
  const Effect effect = Make();
  Shorts samples = Noise(44100, 2, 0.5);
  effect(samples.data(), 441, 44100, 2);
  const size_t before = AllocationCount();
  for (size_t at = 0; at + 882 <= samples.size(); at += 882) effect(&samples[at], 441, 44100, 2);
  EXPECT_EQ(AllocationCount(), before);
}

// A sound that rings out leaves them.
TEST_P(EveryEffect, MeetsNoTinyNumbersInTheSilenceAfterASound) {
  const Effect effect = Make();
  Shorts samples = ToShorts(WhiteNoise(88200, 0.5, 1));
  samples.resize(88200 * 32);
  m_tinyNumbers.Forget();
  Processed(effect, samples, 44100, 2, 441);
  EXPECT_FALSE(m_tinyNumbers.WereMet());
}

TEST_P(EveryEffect, RestoresTheModeOfTheProcessor) {
  const Effect effect = Make();
  Shorts samples = ToShorts(WhiteNoise(882, 0.5, 1));
  volatile double tiny = std::numeric_limits<double>::min();
  effect(samples.data(), 441, 44100, 2);
  volatile double half = tiny / 2;
  EXPECT_GT(half, 0);
}

const Case kEqualizer{"IEqualizer", Equaliser};
const Case kEffectModule{"AudioEffectModule", EffectModule};
const Case kDspProcessor{"CAudioDspProcessor", DspProcessor};
const Case kKaraoke{"AudioKaraokeEffectModule", Karaoke};
const Case kDrc{"Drc", Compressor};
const Case kMultibandDrc{"MultibandDrc", Multiband};

std::string NameOf(const testing::TestParamInfo<Case>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(, EveryEffect,
                         testing::Values(kEqualizer, kEffectModule, kDspProcessor, kKaraoke, kDrc,
                                         kMultibandDrc),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(, EffectOfAnyBlock,
                         testing::Values(kEqualizer, kEffectModule, kDspProcessor, kKaraoke,
                                         kMultibandDrc),
                         NameOf);

}  // namespace
