#include "engine_api/effects/audio_dsp_processor.h"

#include <exception>

#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/dsp/reverb/reverb.h"
#include "desktop/effects/effect_gate.h"

namespace {

// A hall. The sound itself gives up 2 dB to make room for the tail.
constexpr NreverbFv3Parameter kHall = {.Factor = 2.5f,
                                       .Wet = -16,
                                       .Dry = -2,
                                       .Feedback = 0.8f,
                                       .Damp1 = 0.5f,
                                       .Damp2 = 0.1f,
                                       .Damp3 = 0.2f,
                                       .ReverbTime = 2.1f,
                                       .Width = 1,
                                       .Delay = 20};

}  // namespace

struct CAudioDspProcessor::Impl {
  desktop::Reverb reverb;
  desktop::EffectGate gate{"CAudioDspProcessor"};
};

CAudioDspProcessor::CAudioDspProcessor() : m_impl(std::make_unique<Impl>()) {
  m_impl->reverb.SetParameter(kHall);
}

CAudioDspProcessor::~CAudioDspProcessor() = default;

void CAudioDspProcessor::SetReverbExEnable(bool enabled) { m_impl->reverb.SetEnabled(enabled); }

int CAudioDspProcessor::Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
                                int sampleSize) {
  if (!m_impl->gate.Passes(samples, samplesPerChannel, sampleRate, channels, sampleSize)) {
    return samplesPerChannel;
  }
  const desktop::DenormalGuard guard;
  try {
    desktop::ProcessInBlocks<short>(samples, samplesPerChannel, channels,
                                    [&](float* const* rows, size_t frames) {
                                      m_impl->reverb.Process(rows, channels, frames, sampleRate);
                                    });
  } catch (const std::exception&) {
    m_impl->gate.TellNoMemory();
  }
  return samplesPerChannel;
}
