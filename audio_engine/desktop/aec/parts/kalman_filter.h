#pragma once

#include <complex>
#include <vector>

#include "desktop/dsp/real_fft.h"

namespace desktop {

// The linear part of an echo canceller: learns the echo path as a state with uncertainty, so that
// near-end speech slows it down and an unknown path speeds it up (Enzner and Vary,
// "Frequency-domain adaptive Kalman filter for acoustic echo control in hands-free telephones",
// 2006; in partitions: Kuech, Mabande and Enzner, "State-space architecture of the
// partitioned-block-based acoustic echo controller", 2014). Mono, in blocks. Samples are floats in
// the 16-bit range. Allocates in the constructor only.
class KalmanFilter {
 public:
  // The filter is `partitions` blocks long and may start at up to `maxOffset` blocks of delay.
  KalmanFilter(int block, int partitions, int maxOffset);

  // Moves the start of the filter, in blocks of delay; what it has learnt moves along.
  void SetOffset(int blocks);
  int Offset() const { return m_offset; }

  void Restart();  // Forgets the echo path.

  // Takes a far-end block and the near-end block that was captured with it, and gives the near end
  // without the echo; `out` may be `near`. Every pointer is to one block.
  void Process(const float* far, const float* near, float* out);

 private:
  using Spectrum = std::vector<std::complex<float>>;
  using Power = std::vector<float>;

  const Spectrum& FarSpectrum(int partition) const;
  float FirstUncertainty(int partition) const;
  void ForgetPartition(int partition);
  void PredictEcho();
  void Adapt();
  bool Diverged(const float* near, const float* error);
  void DoubtUselessPath();

  const int m_block;
  const int m_partitions;
  int m_offset = 0;
  RealFft m_fft;
  std::vector<float> m_farSamples;  // The last two blocks.
  std::vector<Spectrum> m_far;      // A ring of far-end spectra, newest at m_newest.
  size_t m_newest = 0;
  std::vector<Spectrum> m_path;      // The estimated echo path, by partition,
  std::vector<Power> m_uncertainty;  // and the variance of its error.
  Power m_predicted;                 // Power of the echo that the error of the path makes.
  Power m_nearPower;                 // Of the near end without echo, smoothed.
  Spectrum m_echo;
  Spectrum m_error;
  Spectrum m_step;
  std::vector<float> m_samples;
  float m_nearEnergy = 0;  // Of the input,
  float m_outEnergy = 0;   // and of what is left, smoothed.
  bool m_wasUseful = false;
  int m_uselessFor = 0;  // Blocks with a far end that cancelled next to nothing.
};

}  // namespace desktop
