#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include "beautified.h"
#include "engine_api/effects/voice_changer.h"
#include "support/signals.h"

// What a voice effect or a mode makes of a mono sound.

using Shorts = std::vector<short>;
using Doubles = std::vector<double>;

constexpr int kRate = 16000;

inline Doubles Changed(VoiceEffectOption effect, Shorts samples) {
  const std::unique_ptr<IVoiceChangerToolbox> toolbox(IVoiceChangerToolbox::Create(kRate, 1));
  toolbox->SetVoiceEffectOption(effect);
  for (size_t done = 0; done < samples.size(); done += 160) {
    short count = 160;
    toolbox->Process(&samples[done], &count);
  }
  return ToDoubles(samples);
}

inline Doubles Changed(VoiceBeautifyOption mode, const Shorts& samples) {
  return ToDoubles(Process(*Enabled(mode, 1, 0), samples, kRate));
}

// The second half of a sound that has settled.
inline std::span<const double> Settled(const Doubles& sound) {
  return {sound.data() + sound.size() / 2, sound.size() / 2};
}
