#include "engine_api/enhancement/audio_denoise.h"

#include <exception>
#include <vector>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"
#include "desktop/enhancement/parts/spectral_suppressor.h"
#include "desktop/platform/log.h"

namespace {

using desktop::Size;

constexpr float kNormalGain = 0.1f;    // -20 dB
constexpr float kLightGain = 0.3548f;  // -9 dB

// Cleans one channel in hops of 10 ms as they fill, whatever share of a block comes in.
class Channel {
 public:
  Channel(int rate, size_t hop, size_t delay) : m_suppressor(rate, hop), m_hop(hop) {
    m_in.reserve(2 * hop);
    m_out.reserve(4 * hop);
    m_out.assign(delay, 0.0f);
  }

  void Push(float sample, float lowestGain) {
    m_in.push_back(sample);
    if (m_in.size() < m_hop) return;
    m_suppressor.Process(m_in, lowestGain);
    m_out.insert(m_out.end(), m_in.begin(), m_in.end());
    m_in.clear();
  }

  float Pop() { return m_out[m_taken++]; }

  // Drops the samples that have been popped.
  void EndBlock() {
    m_out.erase(m_out.begin(), m_out.begin() + desktop::Offset(m_taken));
    m_taken = 0;
  }

 private:
  desktop::SpectralSuppressor m_suppressor;
  size_t m_hop;
  std::vector<float> m_in;
  std::vector<float> m_out;
  size_t m_taken = 0;
};

}  // namespace

struct CAudioDenoise::Impl {
  Impl(int sampleRate, int channelCount)
      : block(Size(sampleRate) * Size(channelCount) * 10 / 1000) {
    const size_t hop = Size(sampleRate) / 100;
    // A block of whole hops gives as much as it takes. Otherwise a hop may still be incomplete when
    // its first samples are wanted.
    const size_t delay = block == hop * Size(channelCount) ? 0 : hop;
    channels.reserve(Size(channelCount));
    for (int i = 0; i < channelCount; ++i) channels.emplace_back(sampleRate, hop, delay);
  }

  size_t After(size_t channel) const { return channel + 1 == channels.size() ? 0 : channel + 1; }

  // The samples of one call, all channels.
  size_t block;
  std::vector<Channel> channels;

  // The channel of the next block's first sample.
  size_t next = 0;
  float lowestGain = kNormalGain;
};

CAudioDenoise::CAudioDenoise(int sampleRate, int channels) {
  if (sampleRate < 4000 || sampleRate > 192000 || channels < 1 || channels > 64) {
    desktop::LogRefusal("CAudioDenoise: %d Hz, %d channels are not supported", sampleRate,
                        channels);
    return;
  }
  try {
    m_impl = std::make_unique<Impl>(sampleRate, channels);
  } catch (const std::exception&) {
    desktop::LogRefusal("CAudioDenoise: no memory");
  }
}

CAudioDenoise::~CAudioDenoise() = default;

void CAudioDenoise::EnableLightDenoise(bool enable) {
  if (m_impl) m_impl->lowestGain = enable ? kLightGain : kNormalGain;
}

void CAudioDenoise::Process(short* samples) {
  if (!m_impl) return;
  size_t channel = m_impl->next;
  for (size_t i = 0; i < m_impl->block; ++i, channel = m_impl->After(channel)) {
    m_impl->channels[channel].Push(samples[i], m_impl->lowestGain);
  }
  channel = m_impl->next;
  for (size_t i = 0; i < m_impl->block; ++i, channel = m_impl->After(channel)) {
    samples[i] = desktop::ToSample(m_impl->channels[channel].Pop());
  }
  for (Channel& each : m_impl->channels) each.EndBlock();
  m_impl->next = channel;
}
