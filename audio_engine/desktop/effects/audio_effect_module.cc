#include "engine_api/effects/audio_effect_module.h"

#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/dsp/filters/graphic_equalizer.h"
#include "desktop/effects/effect_gate.h"

struct AudioEffectModule::Impl {
  desktop::GraphicEqualizer equalizer;
  desktop::EffectGate gate{"AudioEffectModule"};
};

AudioEffectModule::AudioEffectModule() : m_impl(std::make_unique<Impl>()) {}
AudioEffectModule::~AudioEffectModule() = default;

void AudioEffectModule::SetEqualizerEnable(bool enabled) { m_impl->equalizer.SetEnabled(enabled); }

void AudioEffectModule::SetEqGains(float* gains, bool smooth) {
  m_impl->equalizer.SetGains(gains, smooth);
}

uint32_t AudioEffectModule::Process(zuwebrtc::AudioFrame& frame) {
  if (!m_impl->gate.Passes(frame)) return 0;
  const desktop::DenormalGuard guard;
  const int channels = frame.num_channels_;
  desktop::ProcessInBlocks<int16_t>(
      reinterpret_cast<char*>(frame.data_), frame.samples_per_channel_, channels,
      [&](float* const* rows, size_t count) {
        m_impl->equalizer.Process(rows, channels, count, frame.sample_rate_hz_);
      });
  return static_cast<uint32_t>(frame.samples_per_channel_);
}
