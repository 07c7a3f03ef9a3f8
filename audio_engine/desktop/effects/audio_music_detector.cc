#include "engine_api/effects/audio_music_detector.h"

#include <algorithm>
#include <array>
#include <exception>

#include "desktop/common/counts.h"
#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/dsp/music/music_features.h"
#include "desktop/dsp/music/music_score.h"
#include "desktop/effects/effect_gate.h"

namespace {

using desktop::MusicFeatures;

// With less than 1.5 s there is nothing to decide on. A look is taken every 20 ms.
constexpr int kFirstLooks = 75;

// A score every 100 ms; the decision rests on the mean of 1 s.
constexpr int kLooksPerScore = 5;
constexpr int kScores = 10;

// 1.5 s of silence ends the music.
constexpr int kSilentLooks = 75;
constexpr double kHysteresis = 0.15;

}  // namespace

struct AudioMusicDetector::Impl {
  MusicFeatures features;
  desktop::EffectGate gate{"AudioMusicDetector"};
  std::array<double, kScores> scores{};
  int scoreCount = 0;
  int sampleRate = 0;
  bool enabled = false;
  bool music = false;

  void Forget() {
    music = false;
    scoreCount = 0;
  }

  void Decide() {
    if (features.SilentLooks() >= kSilentLooks) {
      features.Restart();
      Forget();
      return;
    }
    if (features.Looks() < kFirstLooks || features.Looks() % kLooksPerScore != 0) return;
    scores[desktop::Size(scoreCount++ % kScores)] = desktop::MusicScore(features.Measure());
    const int count = std::min(scoreCount, kScores);
    double mean = 0;
    for (int i = 0; i < count; ++i) mean += scores[desktop::Size(i)] / count;
    music = mean > (music ? -kHysteresis : kHysteresis);
  }
};

AudioMusicDetector::AudioMusicDetector() : m_impl(std::make_unique<Impl>()) {}
AudioMusicDetector::~AudioMusicDetector() = default;

void AudioMusicDetector::Enable(bool enabled) {
  m_impl->enabled = enabled;
  m_impl->sampleRate = 0;
  m_impl->Forget();
}

void AudioMusicDetector::Process(zuwebrtc::AudioFrame& frame) {
  Impl& impl = *m_impl;
  if (!impl.enabled || !impl.gate.Passes(frame)) return;
  if (frame.sample_rate_hz_ != impl.sampleRate) {
    impl.sampleRate = 0;
    impl.Forget();
    try {
      impl.features.Reset(frame.sample_rate_hz_);
    } catch (const std::exception&) {
      impl.gate.TellNoMemory();
      return;
    }
    impl.sampleRate = frame.sample_rate_hz_;
  }
  const desktop::DenormalGuard guard;
  const int channels = frame.num_channels_;
  for (int i = 0; i < frame.samples_per_channel_; ++i) {
    float samples[desktop::kMaxEffectChannels];
    for (int c = 0; c < channels; ++c) {
      samples[c] = static_cast<float>(frame.data_[i * channels + c]) / 32768.0f;
    }
    if (impl.features.Push(samples, channels)) impl.Decide();
  }
}

bool AudioMusicDetector::IsMusic() const { return m_impl->music; }
