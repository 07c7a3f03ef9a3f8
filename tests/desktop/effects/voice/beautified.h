#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "engine_api/effects/voice_beautify.h"

struct ReleaseBeautify {
  void operator()(IAudioVoiceBeautify* effect) const { effect->Destroy(); }
};
using Beautify = std::unique_ptr<IAudioVoiceBeautify, ReleaseBeautify>;

// Of mode 1 to 6, counted from 0.
inline Beautify Enabled(int mode, float strength, float semitones) {
  Beautify effect(IAudioVoiceBeautify::Create());
  effect->SetEnabled(true);
  effect->SetVoiceBeautifyOption(static_cast<VoiceBeautifyOption>(mode), strength, semitones);
  return effect;
}

// Passes the samples through in blocks of 10 ms.
inline std::vector<short> Process(IAudioVoiceBeautify& effect, std::vector<short> samples, int rate,
                                  int channels = 1) {
  const auto block = static_cast<size_t>(rate / 100 * channels);
  for (size_t done = 0; done + block <= samples.size(); done += block) {
    const int count = static_cast<int>(block);
    auto* unsignedSamples = reinterpret_cast<unsigned short*>(&samples[done]);
    EXPECT_EQ(effect.VoiceBeautifyProcess(unsignedSamples, count, rate, channels), count);
  }
  return samples;
}
