#include "desktop/effects/voice/voice_stream.h"

#include <algorithm>
#include <cmath>
#include <exception>

namespace desktop {
namespace {

std::unique_ptr<VoiceChain> ChainOf(const VoiceRecipe& recipe, int rate, int channels) {
  if (recipe == VoiceRecipe()) return nullptr;
  return std::make_unique<VoiceChain>(recipe, rate, channels);
}

}  // namespace

// Makes the chains that are missing. Returns false when there is no memory for them.
bool VoiceStream::Prepare(int rate, int channels) {
  const bool anew = rate != m_rate || channels != m_channels;
  try {
    if (anew) {
      m_rate = 0;
      m_fading = false;
      m_next.reset();
      m_chain = ChainOf(m_wanted, rate, channels);
      m_playing = m_wanted;
      m_rate = rate;
      m_channels = channels;
    } else if (!m_fading && m_wanted != m_playing) {
      m_next = ChainOf(m_wanted, rate, channels);
      m_playing = m_wanted;
      m_wait = m_next ? m_next->Latency() : 0;
      m_faded = 0;
      m_fading = true;
    }
    return true;
  } catch (const std::exception&) {
    m_gate.TellNoMemory();
    return false;
  }
}

void VoiceStream::Run(float* const* rows, size_t frames) {
  if (!m_fading) {
    if (m_chain) m_chain->Process(rows, frames);
    return;
  }
  float planar[kMaxEffectChannels][kMaxEffectFrames];
  float* const coming[kMaxEffectChannels] = {planar[0], planar[1]};
  for (int c = 0; c < m_channels; ++c) std::copy_n(rows[c], frames, coming[c]);
  if (m_chain) m_chain->Process(rows, frames);
  if (m_next) m_next->Process(coming, frames);

  const size_t fade = Size(m_rate / 50);
  for (size_t i = 0; i < frames; ++i) {
    if (m_wait > 0) {
      --m_wait;
      continue;
    }
    const double phase = std::min((Real(m_faded) + 0.5) / Real(fade), 1.0);
    const auto share = static_cast<float>(0.5 - 0.5 * std::cos(M_PI * phase));
    for (int c = 0; c < m_channels; ++c) rows[c][i] += share * (coming[c][i] - rows[c][i]);
    ++m_faded;
  }
  if (m_faded < fade) return;
  m_chain = std::move(m_next);
  m_fading = false;
}

}  // namespace desktop
