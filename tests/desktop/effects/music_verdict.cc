#include "music_verdict.h"

#include <algorithm>
#include <cstddef>

#include "support/signals.h"

Verdict Listen(AudioMusicDetector& detector, const std::vector<double>& sound, int rate,
               int channels, int phase) {
  const std::vector<short> samples = ToShorts(sound);
  Verdict verdict;
  int blocks = 0, music = 0;
  bool last = detector.IsMusic();
  const auto frames = static_cast<size_t>(rate / 100);
  for (size_t at = 0; at + frames <= samples.size(); at += frames) {
    zuwebrtc::AudioFrame frame;
    frame.sample_rate_hz_ = rate;
    frame.num_channels_ = channels;
    frame.samples_per_channel_ = rate / 100;
    for (size_t i = 0; i < frames; ++i) {
      for (size_t c = 0; c < static_cast<size_t>(channels); ++c) {
        const int sample = samples[at + i] * (c == 0 ? 1 : phase);
        frame.data_[i * static_cast<size_t>(channels) + c] = static_cast<short>(sample);
      }
    }
    detector.Process(frame);
    verdict.changes += detector.IsMusic() != last ? 1 : 0;
    last = detector.IsMusic();
    if (at < frames * 300) continue;
    ++blocks;
    music += last ? 1 : 0;
  }
  verdict.share = static_cast<double>(music) / std::max(1, blocks);
  return verdict;
}

Verdict Listen(const std::vector<double>& sound, int rate, int channels) {
  AudioMusicDetector detector;
  detector.Enable(true);
  return Listen(detector, sound, rate, channels);
}
