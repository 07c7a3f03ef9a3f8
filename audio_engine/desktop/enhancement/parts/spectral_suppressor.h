#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "desktop/enhancement/parts/noise_tracker.h"
#include "desktop/enhancement/parts/short_time_spectrum.h"
#include "desktop/enhancement/parts/steady_noise.h"

namespace desktop {

// Cleans one channel of speech, hop by hop of 10 ms, with a lag of one hop: the log-spectral
// amplitude estimator with the decision-directed signal-to-noise ratio (Ephraim and Malah, "Speech
// enhancement using a minimum mean-square error log-spectral amplitude estimator", 1985, and "...
// short-time spectral amplitude estimator", 1984). Belongs to one thread at a time; allocates in
// the constructor only.
class SpectralSuppressor {
 public:
  // rate in Hz; hops of 10 ms are `hop` samples long.
  SpectralSuppressor(int rate, size_t hop);

  // Cleans one hop in place; no bin is lowered below `lowestGain` times what it was.
  void Process(std::span<float> samples, float lowestGain);

 private:
  ShortTimeSpectrum m_spectrum;
  SteadyNoise m_steady;
  NoiseTracker m_noise;
  std::vector<float> m_power;

  // The power of the speech in the hop before, as estimated then.
  std::vector<float> m_speech;
};

}  // namespace desktop
