#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "desktop/enhancement/parts/noise_tracker.h"
#include "desktop/enhancement/parts/short_time_spectrum.h"

namespace desktop {

// Whether a frame of 10 ms stands out of the background noise: the mean log-likelihood ratio of
// speech over 16 bands from 100 to 3800 Hz (Sohn, Kim and Sung, "A statistical model-based voice
// activity detection", 1999) against a threshold, with a hang-over that is longer the noisier the
// recording is. No look-ahead; allocates in the constructor only.
class ActivityDetector {
 public:
  // rate in Hz; frames are `hop` samples long.
  ActivityDetector(int rate, size_t hop);

  // The threshold of the mean log-likelihood ratio.
  void SetThreshold(float threshold) { m_threshold = threshold; }

  // Takes the next frame; true when it is active. Digital silence never is.
  // `steady` as in NoiseTracker::Update.
  bool Process(std::span<const float> samples, bool steady);

 private:
  void MeasureBands(std::span<const float> samples);
  float LikelihoodRatio();
  void FollowSpeechRatio();
  int HangOver() const;

  ShortTimeSpectrum m_spectrum;
  std::vector<size_t> m_edges;  // The bins where the bands begin, and where the last one ends.
  NoiseTracker m_noise;
  std::vector<float> m_power;   // Per band, mean over its bins.
  std::vector<float> m_speech;  // The power of the speech in the frame before, as estimated then.
  float m_threshold = 1.0f;
  float m_speechRatio = 20.0f;  // Speech over noise in dB, over the last seconds of speech.
  int m_hangOver = 0;           // Frames that are still active although nothing is there.
};

}  // namespace desktop
