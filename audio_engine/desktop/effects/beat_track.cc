#include "engine_api/effects/beat_track.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <deque>
#include <exception>
#include <new>
#include <optional>

#include "desktop/common/counts.h"
#include "desktop/dsp/music/beat_follower.h"
#include "desktop/dsp/music/onset_envelope.h"
#include "desktop/platform/callback_scope.h"
#include "desktop/platform/log.h"

namespace {

using desktop::RefusesInCallback;

constexpr int kMaxChannels = 8;

class BeatTrack final : public IBeatTrack {
 public:
  BeatTrack(int rate, int channels) : m_rate(rate), m_channels(channels) {
    m_formatIsGood = rate >= 8000 && rate <= 192000 && channels >= 1 && channels <= kMaxChannels;
    if (!m_formatIsGood) {
      desktop::LogRefusal("IBeatTrack: %d Hz, %d channels cannot be done", rate, channels);
    }
  }

  void Destroy() override {
    if (!RefusesInCallback(this, "IBeatTrack::Destroy")) delete this;
  }

  void Start(int mode, IBeatTrackNotify* notify, int delayDecision) override {
    if (RefusesInCallback(this, "IBeatTrack::Start")) return;
    if (mode != 0) desktop::LogRefusal("IBeatTrack: mode %d is taken as 0", mode);
    m_notify = notify;
    m_delay = int64_t{m_rate} * std::clamp(delayDecision, 0, 10000) / 1000;
    m_frames = 0;
    m_filled = 0;
    m_told = 0;
    m_pending.clear();
    m_follower.reset();
    if (!m_formatIsGood) return;
    try {
      m_envelope.emplace(m_rate, m_channels);
      m_follower.emplace(m_envelope->Step());
    } catch (const std::exception&) {
      desktop::LogRefusal("IBeatTrack: no memory");
    }
  }

  int Detectbeat(short* block, int samples) override {
    if (RefusesInCallback(this, "IBeatTrack::Detectbeat")) return kBeatTrackBadBlock;
    if (!m_formatIsGood) return kBeatTrackBadFormat;
    if (!m_follower) return kBeatTrackNotStarted;
    if (block == nullptr || samples < 0) return kBeatTrackBadBlock;
    const int toldBefore = m_told;
    for (int i = 0; i < samples; ++i) {
      m_frame[m_filled++] = block[i];
      if (m_filled < desktop::Size(m_channels)) continue;
      m_filled = 0;
      Take();
    }
    return m_told > toldBefore ? 1 : 0;
  }

  void Stop() override {
    if (RefusesInCallback(this, "IBeatTrack::Stop")) return;
    while (!m_pending.empty()) Tell();
    m_follower.reset();
    m_notify = nullptr;
  }

 private:
  struct Pending {
    // The frame at which it is told.
    int64_t due;
    int bpm;
    float power;
  };

  void Take() {
    ++m_frames;
    if (m_envelope->Put(m_frame.data())) {
      m_follower->Put(m_envelope->Value(), m_envelope->Weight(), m_envelope->Bass());
    }
    // The time of this frame in onset values, in which everything shows later by the latency.
    const double now = static_cast<double>(m_frames) / m_rate;
    while (m_follower->IsSteady() &&
           (m_follower->Next().time * m_envelope->Step() - m_envelope->Latency()) <= now) {
      const desktop::ExpectedBeat& beat = m_follower->Next();
      const double bpm = 60 / (beat.period * m_envelope->Step());
      m_pending.push_back({m_frames + m_delay, static_cast<int>(std::lround(bpm)), beat.power});
      m_follower->Advance();
    }
    while (!m_pending.empty() && m_pending.front().due <= m_frames) Tell();
  }

  void Tell() {
    const Pending beat = m_pending.front();
    m_pending.pop_front();
    ++m_told;
    if (m_notify == nullptr) return;
    const desktop::CallbackScope scope(this);
    if (m_told == 5) m_notify->NotifyStartFive();
    m_notify->NotifyBeat(beat.bpm, beat.power);
  }

  const int m_rate;
  const int m_channels;
  bool m_formatIsGood = false;
  IBeatTrackNotify* m_notify = nullptr;

  // How many frames later beats are told, and how many have come since Start.
  int64_t m_delay = 0;
  int64_t m_frames = 0;

  // The next frame, of which m_filled samples have come.
  std::array<short, kMaxChannels> m_frame{};
  size_t m_filled = 0;
  int m_told = 0;
  std::deque<Pending> m_pending;
  std::optional<desktop::OnsetEnvelope> m_envelope;

  // There from Start to Stop.
  std::optional<desktop::BeatFollower> m_follower;
};

}  // namespace

IBeatTrack* CreateBeatTrack(int rate, int channels) {
  return new (std::nothrow) BeatTrack(rate, channels);
}
