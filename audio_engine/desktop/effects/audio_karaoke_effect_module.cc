#include "engine_api/effects/audio_karaoke_effect_module.h"

#include <exception>

#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/effects/effect_gate.h"
#include "desktop/effects/karaoke/karaoke_chain.h"

struct AudioKaraokeEffectModule::Impl {
  desktop::KaraokeChain chain;
  desktop::EffectGate gate{"AudioKaraokeEffectModule"};
};

AudioKaraokeEffectModule::AudioKaraokeEffectModule() : m_impl(std::make_unique<Impl>()) {}
AudioKaraokeEffectModule::~AudioKaraokeEffectModule() = default;

void AudioKaraokeEffectModule::EnableDrc(bool enabled) { m_impl->chain.EnableCompressor(enabled); }

void AudioKaraokeEffectModule::EnableEqReverb(bool enabled) {
  m_impl->chain.EnableEqReverb(enabled);
}

void AudioKaraokeEffectModule::SetEqualizerEnable(bool enabled) {
  m_impl->chain.EnableEqualizer(enabled);
}

void AudioKaraokeEffectModule::SetEqGains(float* gains, bool smooth) {
  m_impl->chain.equalizer.SetGains(gains, smooth);
}

void AudioKaraokeEffectModule::EnableReverbFv3(bool enabled) {
  m_impl->chain.EnableReverb(enabled);
}

void AudioKaraokeEffectModule::SetReverbFv3Param(NreverbFv3Parameter parameter) {
  m_impl->chain.reverb.SetParameter(parameter);
}

void AudioKaraokeEffectModule::EnableLimiter(bool enabled) { m_impl->chain.EnableLimiter(enabled); }

void AudioKaraokeEffectModule::SetLimiterParameter(LimiterParameter parameter) {
  m_impl->chain.limiter.SetParameter(parameter);
}

uint32_t AudioKaraokeEffectModule::Process(zuwebrtc::AudioFrame& frame) {
  if (!m_impl->gate.Passes(frame)) return 0;
  const desktop::DenormalGuard guard;
  try {
    desktop::ProcessInBlocks<int16_t>(
        reinterpret_cast<char*>(frame.data_), frame.samples_per_channel_, frame.num_channels_,
        [&](float* const* rows, size_t frames) {
          m_impl->chain.Process(rows, frame.num_channels_, frames, frame.sample_rate_hz_);
        });
  } catch (const std::exception&) {
    m_impl->gate.TellNoMemory();
    return 0;
  }
  return static_cast<uint32_t>(frame.samples_per_channel_);
}
