#include "engine_api/effects/audio_accelerate.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <vector>

#include "desktop/dsp/tempo/time_scaler.h"
#include "engine_api/platform/log.h"

namespace {

class Accelerator final : public IAudioAccelerate {
 public:
  void Destroy() override { delete this; }

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    const bool fits =
        samples != nullptr && Fits(samplesPerChannel, sampleRate, channels, sampleSize);
    if (!fits || !Takes(sampleRate, channels)) return samplesPerChannel;
    try {
      m_block.resize(static_cast<size_t>(samplesPerChannel) * static_cast<size_t>(channels));
      memcpy(m_block.data(), samples, m_block.size() * sizeof(short));
      const size_t frames = Pass(static_cast<size_t>(samplesPerChannel));
      memcpy(samples, m_block.data(), frames * static_cast<size_t>(channels) * sizeof(short));
      return static_cast<int>(frames);
    } catch (const std::exception&) {
      return GiveUp(samplesPerChannel);
    }
  }

  int Process(int* samples, int samplesPerChannel, int sampleRate, int channels, int sampleSize,
              int capacity) override {
    const bool fits = samples != nullptr &&
                      Fits(samplesPerChannel, sampleRate, channels, sampleSize) &&
                      samplesPerChannel <= capacity / channels;
    if (!fits || !Takes(sampleRate, channels)) return samplesPerChannel;
    try {
      m_block.resize(static_cast<size_t>(samplesPerChannel) * static_cast<size_t>(channels));
      for (size_t i = 0; i < m_block.size(); ++i) {
        m_block[i] = static_cast<short>(std::clamp(samples[i], -32768, 32767));
      }
      const size_t frames = Pass(static_cast<size_t>(samplesPerChannel));
      std::copy_n(m_block.begin(), frames * static_cast<size_t>(channels), samples);
      return static_cast<int>(frames);
    } catch (const std::exception&) {
      return GiveUp(samplesPerChannel);
    }
  }

  void Flush() override { m_scaler.reset(); }

  bool GetEnabled() override { return m_enabled; }

  void SetEnabled(bool enabled) override {
    m_enabled = enabled;
    UpdateSpeed();
  }

  bool IsActive() override { return m_enabled || m_scaler.has_value(); }

  void SetAccelerateRate(double percent) override {
    if (std::isnan(percent)) {
      OutputDebugInfo("IAudioAccelerate: a rate that is no number is ignored");
      return;
    }
    m_speed = 1 + std::clamp(percent, 0.0, 100.0) / 100;
    UpdateSpeed();
  }

 private:
  // False as long as nothing waits inside and it is disabled: then a block stays as it is. Once
  // samples wait, all go through the scaler, enabled or not.
  bool Takes(int rate, int channels) {
    if (rate != m_rate || channels != m_channels) m_scaler.reset();
    m_rate = rate;
    m_channels = channels;
    return m_enabled || m_scaler.has_value();
  }

  // Passes m_block, of so many frames, through the scaler and returns how many come out.
  size_t Pass(size_t frames) {
    if (!m_scaler) {
      m_scaler.emplace(m_rate, m_channels);
      UpdateSpeed();
    }
    m_scaler->Put(m_block.data(), frames);
    return m_scaler->Take(m_block.data(), frames);
  }

  bool Fits(int samplesPerChannel, int rate, int channels, int sampleSize) {
    const bool fits = samplesPerChannel >= 0 && rate >= 8000 && rate <= 48000 && channels >= 1 &&
                      channels <= 2 && (sampleSize == 16 || sampleSize == 2);
    if (!fits) Tell("a block that cannot be done passes unchanged");
    return fits;
  }

  int GiveUp(int samplesPerChannel) {
    Tell("no memory");
    m_scaler.reset();
    return samplesPerChannel;
  }

  void UpdateSpeed() {
    if (m_scaler) m_scaler->SetSpeed(m_enabled ? m_speed : 1);
  }

  // The first block is worth a line, not each of them.
  void Tell(const char* what) {
    if (!m_told) OutputDebugInfo("IAudioAccelerate: %s", what);
    m_told = true;
  }

  bool m_enabled = false;
  double m_speed = 1;
  int m_rate = 0;
  int m_channels = 0;
  bool m_told = false;
  std::vector<short> m_block;
  std::optional<desktop::TimeScaler> m_scaler;  // From when it is enabled first.
};

}  // namespace

IAudioAccelerate* CreateAudioAccelerate() { return new (std::nothrow) Accelerator; }
