#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "desktop/enhancement/parts/noise_tracker.h"
#include "desktop/enhancement/parts/short_time_spectrum.h"

namespace desktop {

// Whether a block of 10 ms stands out of the background noise: the mean log-likelihood ratio of
// speech over 16 bands from 100 to 3800 Hz (Sohn, Kim and Sung, "A statistical model-based voice
// activity detection", 1999) against a threshold, with a hang-over that is longer the noisier the
// recording is. No look-ahead; allocates in the constructor only.
class ActivityDetector {
 public:
  // rate in Hz; blocks are `hop` samples long.
  ActivityDetector(int rate, size_t hop);

  // The threshold of the mean log-likelihood ratio.
  void SetThreshold(float threshold) { m_threshold = threshold; }

  // Takes the next block; true when it is active. Digital silence never is.
  // `steady` as in NoiseTracker::Update.
  bool Process(std::span<const float> samples, bool steady);

 private:
  void MeasureBands(std::span<const float> samples);
  float LikelihoodRatio();
  void FollowSpeechRatio();
  int HangOver() const;

  ShortTimeSpectrum m_spectrum;

  // The bins where the bands begin, and where the last one ends.
  std::vector<size_t> m_edges;
  NoiseTracker m_noise;

  // By band: the mean power of its bins, and that of the speech in the block before, as estimated
  // then.
  std::vector<float> m_power;
  std::vector<float> m_speech;
  float m_threshold = 1.0f;

  // How far speech stood above noise in the last seconds of speech, dB.
  float m_speechRatio = 20.0f;

  // So many blocks are still active although nothing is there.
  int m_hangOver = 0;
};

}  // namespace desktop
