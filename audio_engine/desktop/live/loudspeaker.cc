#include "desktop/live/loudspeaker.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace desktop {

namespace {

template <typename Part>
bool Contains(const std::vector<Part*>& parts, const Part* part) {
  return std::find(parts.begin(), parts.end(), part) != parts.end();
}

}  // namespace

Loudspeaker& Loudspeaker::Shared() {
  static auto* const loudspeaker = new Loudspeaker;
  return *loudspeaker;
}

Loudspeaker::Loudspeaker()
    : m_parts(new Parts),
      m_sums(kFormat.BlockFrames() * kFormat.channels),
      m_feedbackSums(m_sums.size()),
      m_block(m_sums.size()),
      m_device(Direction::kOutput, kFormat,
               [this](short* samples, size_t frames) { MixBlock(samples, frames); }) {}

Loudspeaker::~Loudspeaker() {
  m_device.Stop();
  delete m_parts.load();
}

void Loudspeaker::Add(PlaySource* source) {
  const std::scoped_lock lock(m_mutex);
  if (!Contains(m_parts.load()->sources, source)) {
    Change([&](Parts& parts) { parts.sources.push_back(source); });
  }
  StartOrStop();
}

void Loudspeaker::Add(PlayListener* listener) {
  const std::scoped_lock lock(m_mutex);
  Change([&](Parts& parts) { parts.listeners.push_back(listener); });
  StartOrStop();
}

void Loudspeaker::Remove(PlaySource* source) {
  std::unique_lock lock(m_mutex);
  if (!Contains(m_parts.load()->sources, source)) return;
  const uint64_t turn = Change([&](Parts& parts) { std::erase(parts.sources, source); });
  StartOrStop();
  lock.unlock();
  WaitForTheEndOf(turn);
}

void Loudspeaker::Remove(PlayListener* listener) {
  std::unique_lock lock(m_mutex);
  if (!Contains(m_parts.load()->listeners, listener)) return;
  const uint64_t turn = Change([&](Parts& parts) { std::erase(parts.listeners, listener); });
  StartOrStop();
  lock.unlock();
  WaitForTheEndOf(turn);
}

// Puts changed parts in the place of those that the device's thread may be going through: that one
// never waits, and nothing is allocated or freed there. Returns the device's turn of that moment.
template <typename Edit>
uint64_t Loudspeaker::Change(const Edit& edit) {
  auto changed = std::make_unique<Parts>(*m_parts.load());
  edit(*changed);
  m_retired.reserve(m_retired.size() + 1);
  const Parts* const before = m_parts.exchange(changed.release());
  const uint64_t turn = m_turn;
  m_retired.push_back({std::unique_ptr<const Parts>(before), turn});
  std::erase_if(m_retired, [&](const Retired& retired) { return IsOver(retired.turn); });
  return turn;
}

// Returns whether the device's thread has ended that turn, or was between two.
bool Loudspeaker::IsOver(uint64_t turn) const { return turn % 2 == 0 || m_turn != turn; }

void Loudspeaker::WaitForTheEndOf(uint64_t turn) const {
  while (!IsOver(turn)) std::this_thread::sleep_for(std::chrono::microseconds(100));
}

void Loudspeaker::StartOrStop() {
  const Parts& parts = *m_parts.load();
  const auto hearsSilence = [](const PlayListener* listener) { return listener->HearsSilence(); };
  const bool needed = !parts.sources.empty() ||
                      std::any_of(parts.listeners.begin(), parts.listeners.end(), hearsSilence);
  if (needed && !m_runs) {
    m_runs = m_device.Start();
  } else if (!needed && m_runs) {
    m_device.Stop();
    m_runs = false;
  }
}

void Loudspeaker::MixBlock(short* samples, size_t frames) {
  ++m_turn;
  MixParts(*m_parts.load(), samples, frames);
  ++m_turn;
}

void Loudspeaker::MixParts(const Parts& parts, short* samples, size_t frames) {
  std::fill(m_sums.begin(), m_sums.end(), 0);
  std::fill(m_feedbackSums.begin(), m_feedbackSums.end(), 0);
  bool feeds = false;
  bool replaces = false;
  for (PlaySource* source : parts.sources) {
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
  for (PlayListener* listener : parts.listeners) {
    listener->OnPlayed({samples, feeds ? m_block.data() : nullptr, replaces, frames});
  }
}

}  // namespace desktop
