#include "engine_api/effects/audio_accelerate.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <vector>

#include "desktop/common/counts.h"
#include "desktop/dsp/tempo/time_scaler.h"
#include "desktop/platform/log.h"

namespace {

using desktop::Count;
using desktop::Size;

class Accelerator final : public IAudioAccelerate {
 public:
  void Destroy() override { delete this; }

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    const bool fits =
        samples != nullptr && Fits(samplesPerChannel, sampleRate, channels, sampleSize);
    if (!fits || !Takes(sampleRate, channels)) return samplesPerChannel;
    return Pass(
        samplesPerChannel, [&] { memcpy(m_block.data(), samples, m_block.size() * sizeof(short)); },
        [&](size_t count) { memcpy(samples, m_block.data(), count * sizeof(short)); });
  }

  int Process(int* samples, int samplesPerChannel, int sampleRate, int channels, int sampleSize,
              int capacity) override {
    const bool fits = samples != nullptr &&
                      Fits(samplesPerChannel, sampleRate, channels, sampleSize) &&
                      samplesPerChannel <= capacity / channels;
    if (!fits || !Takes(sampleRate, channels)) return samplesPerChannel;
    return Pass(
        samplesPerChannel,
        [&] {
          for (size_t i = 0; i < m_block.size(); ++i) {
            m_block[i] = static_cast<short>(std::clamp(samples[i], -32768, 32767));
          }
        },
        [&](size_t count) { std::copy_n(m_block.begin(), count, samples); });
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
      desktop::LogRefusal("IAudioAccelerate: a rate that is no number is ignored");
      return;
    }
    m_speed = 1 + std::clamp(percent, 0.0, 100.0) / 100;
    UpdateSpeed();
  }

 private:
  // Returns false as long as it is disabled and nothing waits inside: a block then stays as it is.
  // Once samples wait, all go through the scaler, enabled or not.
  bool Takes(int rate, int channels) {
    if (rate != m_rate || channels != m_channels) m_scaler.reset();
    m_rate = rate;
    m_channels = channels;
    return m_enabled || m_scaler.has_value();
  }

  // Passes a block through the scaler and returns how many samples per channel come out. `take`
  // copies the block into m_block, `give` the first so many samples of it back.
  template <typename TakeBlock, typename GiveBlock>
  int Pass(int samplesPerChannel, const TakeBlock& take, const GiveBlock& give) {
    const size_t frames = Size(samplesPerChannel);
    const size_t channels = Size(m_channels);
    try {
      m_block.resize(frames * channels);
      take();
      if (!m_scaler) {
        m_scaler.emplace(m_rate, m_channels);
        UpdateSpeed();
      }
      m_scaler->Put(m_block.data(), frames);
      const size_t made = m_scaler->Take(m_block.data(), frames);
      give(made * channels);
      return Count(made);
    } catch (const std::exception&) {
      return GiveUp(samplesPerChannel);
    }
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

  // Writes one line for the first block and none for the others.
  void Tell(const char* what) {
    if (!m_told) desktop::LogRefusal("IAudioAccelerate: %s", what);
    m_told = true;
  }

  bool m_enabled = false;
  double m_speed = 1;
  int m_rate = 0;
  int m_channels = 0;
  bool m_told = false;
  std::vector<short> m_block;

  // Empty until it is enabled for the first time.
  std::optional<desktop::TimeScaler> m_scaler;
};

}  // namespace

IAudioAccelerate* CreateAudioAccelerate() { return new (std::nothrow) Accelerator; }
