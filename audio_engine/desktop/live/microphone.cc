#include "desktop/live/microphone.h"

#include <algorithm>

#include "desktop/dsp/dynamics/volume.h"

namespace desktop {

namespace {

// How late the listeners may be before blocks are lost.
constexpr std::chrono::seconds kMaxDelay{2};

}  // namespace

Microphone::Microphone(DeviceFormat format, const std::atomic<bool>& cleans)
    : m_cleans(cleans),
      m_feedback(PlayFeed::What::kFeedback, format),
      m_voice(format.rate, format.channels),
      m_mixed(format.BlockFrames() * format.channels),
      m_sums(m_mixed.size()),
      m_worker(
          format, [this](short* samples, size_t frames) { Work(samples, frames); }, kMaxDelay),
      m_device(Direction::kInput, format, [this](short* samples, size_t /*frames*/) {
        if (!m_worker.Put(samples)) m_device.CountFailure();
      }) {}

Microphone::~Microphone() { Stop(); }

bool Microphone::Start() {
  if (!m_device.Start()) return false;
  m_listens = true;
  Loudspeaker::Shared().Add(&m_feedback);
  return true;
}

void Microphone::Stop() {
  m_device.Stop();
  m_worker.Stop();
  if (m_listens) Loudspeaker::Shared().Remove(&m_feedback);
  m_listens = false;
}

void Microphone::Add(CaptureListener* listener) {
  const std::scoped_lock lock(m_mutex);
  m_listeners.push_back(listener);
}

void Microphone::Remove(CaptureListener* listener) {
  std::unique_lock lock(m_mutex);
  std::erase(m_listeners, listener);
  if (m_caller == std::this_thread::get_id()) return;
  m_returned.wait(lock, [&] { return m_called != listener; });
}

void Microphone::Work(short* samples, size_t frames) {
  if (!m_cleans) {
    m_cleaner = nullptr;
  } else if (m_cleaner == nullptr) {
    m_cleaner = std::make_unique<CaptureCleaner>(Format());
  }
  if (m_cleaner != nullptr) m_cleaner->Process(samples, frames);
  MixFeedback(samples, frames);

  const auto timeMs = static_cast<uint32_t>(m_blocks++ * frames * 1000 / Format().rate);
  const VADResultKind voice = m_voice.Detect(m_mixed.data(), m_mixed.size());
  const CapturedBlock block = {m_mixed.data(),
                               samples,
                               frames,
                               voice,
                               static_cast<uint8_t>(VolumeOf(m_mixed.data(), m_mixed.size())),
                               timeMs,
                               LatencyMs()};
  Tell(block);
}

// Calls the listeners, but none that is removed meanwhile.
void Microphone::Tell(const CapturedBlock& block) {
  std::unique_lock lock(m_mutex);
  m_toCall = m_listeners;
  m_caller = std::this_thread::get_id();
  for (CaptureListener* listener : m_toCall) {
    if (std::find(m_listeners.begin(), m_listeners.end(), listener) == m_listeners.end()) continue;
    m_called = listener;
    lock.unlock();
    listener->OnCaptured(block);
    lock.lock();
    m_called = nullptr;
    m_returned.notify_all();
  }
  m_caller = {};
}

void Microphone::MixFeedback(const short* microphone, size_t frames) {
  if (!m_feedback.Read(m_mixed.data(), frames)) {
    std::copy_n(microphone, m_mixed.size(), m_mixed.begin());
    return;
  }
  if (m_feedback.ReplacesMicrophone()) return;
  for (size_t i = 0; i < m_sums.size(); ++i) m_sums[i] = m_mixed[i] + microphone[i];
  m_limiter.Process(m_sums.data(), frames, Format().channels, m_mixed.data());
}

}  // namespace desktop
