#include "engine_api/effects/audio_music_detector.h"

#include <algorithm>
#include <array>
#include <exception>

#include "desktop/common/counts.h"
#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/dsp/music/music_features.h"
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

// Returns by how many `unit`s a figure lies above `zero`, within bounds.
double Ramp(double value, double zero, double unit, double lowest, double highest) {
  return std::clamp((value - zero) / unit, lowest, highest);
}

// Returns a score, which is above 0 for music. Speech pauses, glides and changes its colour without
// a beat; of these signs none is sure by itself, so each speaks for one side or the other within
// bounds. They were weighed on speech in seventeen languages, clean, noisy and reverberant, and on
// music of some seventy kinds, from drums alone to orchestras.
double Score(const MusicFeatures::Values& values) {
  const double deviation = values[MusicFeatures::kLevelDeviation];
  const double tonal = values[MusicFeatures::kTonal];
  const double flux = values[MusicFeatures::kFlux];
  const double colour = values[MusicFeatures::kColourDeviation];
  const double beat = values[MusicFeatures::kBeat];
  double score = -Ramp(deviation, 6.5, 2, -1.5, 1.5);
  score += Ramp(tonal, 14, 4, -0.7, 2.5);
  score += Ramp(values[MusicFeatures::kSustained], 0.3, 0.1, -0.2, 2);
  score += Ramp(beat, 0.25, 0.05, -0.65, 3);
  score -= Ramp(flux, 2.9, 0.8, -0.3, 1);
  // Between drum and cymbal the colour changes more than between vowel and consonant.
  score += Ramp(colour, 14, 3, 0, 2);
  // A lone instrument rests between its phrases as a talker does, but while it sounds its spectrum
  // moves less than that of syllables.
  score += Ramp(-flux, -2.8, 0.2, 0, 3) * Ramp(deviation, 9, 2, 0, 1);
  score += Ramp(-colour, -3, 1, 0, 2) * Ramp(tonal, 5, 4, 0, 1);
  // What has neither tone nor beat is noise, the surer if it hardly changes.
  const double even = tonal < 15 ? Ramp(-deviation, -2.7, 0.5, 0, 1) : 0;
  score -= 3 * std::max(even, Ramp(-tonal, -4, 1, 0, 1)) * Ramp(-beat, -0.25, 0.1, 0, 1);
  return score;
}

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
    scores[desktop::Size(scoreCount++ % kScores)] = Score(features.Measure());
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
