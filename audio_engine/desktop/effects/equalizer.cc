#include "engine_api/effects/equalizer.h"

#include <cmath>
#include <new>
#include <utility>

#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/dsp/filters/graphic_equalizer.h"
#include "desktop/effects/effect_gate.h"
#include "desktop/platform/log.h"

namespace {

class Equalizer final : public IEqualizer {
 public:
  void Destroy() override { delete this; }

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    if (m_gate.Passes(samples, samplesPerChannel, sampleRate, channels, sampleSize)) {
      Run<short>(samples, samplesPerChannel, sampleRate, channels);
    }
    return samplesPerChannel;
  }

  int Process(int* samples, int samplesPerChannel, int sampleRate, int channels, int sampleSize,
              int capacity) override {
    if (m_gate.Passes(samples, samplesPerChannel, sampleRate, channels, sampleSize) &&
        samplesPerChannel <= capacity / channels) {
      Run<int>(reinterpret_cast<char*>(samples), samplesPerChannel, sampleRate, channels);
    }
    return samplesPerChannel;
  }

  void Flush() override { m_equalizer.Flush(); }
  bool GetEnabled() override { return m_equalizer.IsEnabled(); }
  void SetEnabled(bool enabled) override { m_equalizer.SetEnabled(enabled); }
  bool IsActive() override { return m_equalizer.IsActive(); }

  void SetEqGain(int band, float gain) override {
    if (band < 0 || band >= desktop::kEqualizerBands || std::isnan(gain)) {
      if (!std::exchange(m_told, true)) {
        desktop::LogRefusal("IEqualizer: cannot set band %d to %g dB", band,
                            static_cast<double>(gain));
      }
      return;
    }
    m_equalizer.SetGain(band, gain, true);
  }

 private:
  ~Equalizer() override = default;

  template <typename Sample>
  void Run(char* samples, int frames, int sampleRate, int channels) {
    const desktop::DenormalGuard guard;
    desktop::ProcessInBlocks<Sample>(samples, frames, channels,
                                     [&](float* const* rows, size_t count) {
                                       m_equalizer.Process(rows, channels, count, sampleRate);
                                     });
  }

  desktop::GraphicEqualizer m_equalizer;
  desktop::EffectGate m_gate{"IEqualizer"};
  bool m_told = false;
};

}  // namespace

IEqualizer* CreateEqualizer() {
  try {
    return new Equalizer;
  } catch (const std::bad_alloc&) {
    desktop::LogRefusal("IEqualizer: no memory");
    return nullptr;
  }
}
