#include "desktop/mixing/loudspeaker.h"

#include <algorithm>

namespace desktop {

Loudspeaker& Loudspeaker::Shared() {
  static auto* const loudspeaker = new Loudspeaker;
  return *loudspeaker;
}

Loudspeaker::Loudspeaker()
    : m_sums(kFormat.BlockFrames() * kFormat.channels),
      m_feedbackSums(m_sums.size()),
      m_block(m_sums.size()),
      m_device(Direction::kOutput, kFormat,
               [this](short* samples, size_t frames) { MixBlock(samples, frames); }) {}

void Loudspeaker::Add(PlaySource* source) {
  const std::scoped_lock control(m_control);
  {
    const std::scoped_lock lock(m_mutex);
    if (std::find(m_sources.begin(), m_sources.end(), source) == m_sources.end()) {
      m_sources.push_back(source);
    }
  }
  StartOrStop();
}

void Loudspeaker::Add(PlayListener* listener) {
  const std::scoped_lock control(m_control);
  {
    const std::scoped_lock lock(m_mutex);
    m_listeners.push_back(listener);
  }
  StartOrStop();
}

void Loudspeaker::Remove(PlaySource* source) {
  const std::scoped_lock control(m_control);
  {
    const std::scoped_lock lock(m_mutex);
    std::erase(m_sources, source);
  }
  StartOrStop();
}

void Loudspeaker::Remove(PlayListener* listener) {
  const std::scoped_lock control(m_control);
  {
    const std::scoped_lock lock(m_mutex);
    std::erase(m_listeners, listener);
  }
  StartOrStop();
}

void Loudspeaker::StartOrStop() {
  const auto hearsSilence = [](const PlayListener* listener) { return listener->HearsSilence(); };
  const bool needed =
      !m_sources.empty() || std::any_of(m_listeners.begin(), m_listeners.end(), hearsSilence);
  if (needed && !m_runs) {
    m_runs = m_device.Start();
  } else if (!needed && m_runs) {
    m_device.Stop();
    m_runs = false;
  }
}

void Loudspeaker::MixBlock(short* samples, size_t frames) {
  const std::scoped_lock lock(m_mutex);
  std::fill(m_sums.begin(), m_sums.end(), 0);
  std::fill(m_feedbackSums.begin(), m_feedbackSums.end(), 0);
  bool feeds = false;
  bool replaces = false;
  for (PlaySource* source : m_sources) {
    source->FillBlock(m_block.data(), frames);
    const AudioSourceType feedback = source->FeedBack();
    for (size_t i = 0; i < m_block.size(); ++i) m_sums[i] += m_block[i];
    if (feedback == AudioSourceTypeMic) continue;
    for (size_t i = 0; i < m_block.size(); ++i) m_feedbackSums[i] += m_block[i];
    feeds = true;
    replaces = replaces || feedback == AudioSourceTypeOuterPCM;
  }
  m_limiter.Process(m_sums.data(), frames, kFormat.channels, samples);
  if (feeds) {
    m_feedbackLimiter.Process(m_feedbackSums.data(), frames, kFormat.channels, m_block.data());
  }
  for (PlayListener* listener : m_listeners) {
    listener->OnPlayed({samples, feeds ? m_block.data() : nullptr, replaces, frames});
  }
}

}  // namespace desktop
