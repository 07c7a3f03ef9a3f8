#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include "engine_api/effects/voice_beautify.h"
#include "engine_api/effects/voice_changer.h"
#include "support/signals.h"

// What a voice effect or a mode makes of a mono sound.

using Shorts = std::vector<short>;
using Doubles = std::vector<double>;

constexpr int kRate = 16000;

struct Release {
  void operator()(IAudioVoiceBeautify* effect) const { effect->Destroy(); }
};

inline Doubles Changed(VoiceEffectOption effect, Shorts samples) {
  const std::unique_ptr<IVoiceChangerToolbox> toolbox(IVoiceChangerToolbox::Create(kRate, 1));
  toolbox->SetVoiceEffectOption(effect);
  for (size_t done = 0; done < samples.size(); done += 160) {
    short count = 160;
    toolbox->Process(&samples[done], &count);
  }
  return ToDoubles(samples);
}

inline Doubles Changed(VoiceBeautifyOption mode, Shorts samples) {
  const std::unique_ptr<IAudioVoiceBeautify, Release> effect(IAudioVoiceBeautify::Create());
  effect->SetEnabled(true);
  effect->SetVoiceBeautifyOption(mode, 1, 0);
  effect->Process(reinterpret_cast<char*>(samples.data()), static_cast<int>(samples.size()), kRate,
                  1, 16);
  return ToDoubles(samples);
}

// The second half of a sound that has settled.
inline std::span<const double> Settled(const Doubles& sound) {
  return {sound.data() + sound.size() / 2, sound.size() / 2};
}
