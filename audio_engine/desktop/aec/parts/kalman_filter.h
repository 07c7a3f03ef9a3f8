#pragma once

#include <complex>
#include <cstddef>
#include <vector>

#include "desktop/dsp/real_fft.h"

namespace desktop {

// The linear part of an echo canceller: learns the echo path as a state with uncertainty, so that
// near-end speech slows it down and an unknown path speeds it up (Enzner and Vary,
// "Frequency-domain adaptive Kalman filter for acoustic echo control in hands-free telephones",
// 2006; in partitions: Kuech, Mabande and Enzner, "State-space architecture of the
// partitioned-block-based acoustic echo controller", 2014). A path that is gone is found by a
// second one on trial beside it (Ochiai, Araseki and Ogihara, "Echo canceler with two echo path
// models", 1977). Mono, in blocks. Samples are floats in the 16-bit range. Allocates in the
// constructor only.
class KalmanFilter {
 public:
  // The filter is `partitions` blocks long and may start at up to `maxOffset` blocks of delay.
  KalmanFilter(size_t block, size_t partitions, size_t maxOffset);

  // Moves the start of the filter, in blocks of delay; what it has learnt moves along.
  void SetOffset(size_t blocks);
  size_t Offset() const { return m_offset; }

  // Forgets the echo path.
  void Restart();

  // Takes a far-end block and the near-end block that was captured with it, and gives the near end
  // without the echo; `out` may be `near`. Every pointer is to one block. What has been learnt from
  // a block is faded in with the next one, so that no step is heard where they meet.
  void Process(const float* far, const float* near, float* out);

  // The power, by bin, of the echo that the last block is thought to keep.
  const std::vector<float>& Doubt() const { return m_doubt; }

  // Takes a far-end block whose near end is not known.
  void Hear(const float* far);

 private:
  using Spectrum = std::vector<std::complex<float>>;
  using Power = std::vector<float>;

  // By partition the estimated echo path and the variance of its error, and by bin the power of the
  // near end without echo, smoothed.
  struct EchoPath {
    EchoPath(size_t partitions, size_t bins);

    // Knows nothing of a partition, and of all.
    void Forget(size_t partition);
    void ForgetAll();

    // Moves the start of the filter by `shift` partitions; nothing is known of what comes in.
    void Earlier(size_t shift);
    void Later(size_t shift);

    std::vector<Spectrum> path;
    std::vector<Power> uncertainty;
    Power nearPower;
  };

  const Spectrum& FarSpectrum(size_t offset, size_t partition) const;
  bool FarSounds() const;
  void Age(EchoPath& aged) const;
  void PredictError(EchoPath& by);
  void PredictEarlierEcho();
  void TakeOut(const float* near, float* out, bool diverged) const;
  void Adapt(EchoPath& taught);
  bool Diverged(const float* near, const float* error);
  void Try(float known);
  void BeginTrial();

  const size_t m_block;
  const size_t m_partitions;
  size_t m_offset = 0;
  RealFft m_fft;

  // The last two blocks of the far end, and a ring of its spectra, the newest at m_newest.
  std::vector<float> m_farSamples;
  std::vector<Spectrum> m_far;
  size_t m_newest = 0;

  // How many blocks of the far end have been quiet since the last that was not.
  size_t m_quietFor = 0;

  // The path that takes out the echo, and one on trial.
  EchoPath m_known;
  EchoPath m_trial;

  // The path and its offset that the block before was made with.
  std::vector<Spectrum> m_earlierPath;
  size_t m_earlierOffset = 0;

  // The power of the echo that the error of the path makes.
  Power m_predicted;
  Power m_doubt;
  Spectrum m_echo;
  Spectrum m_error;
  Spectrum m_step;
  std::vector<float> m_samples;
  std::vector<float> m_earlierEcho;
  std::vector<float> m_near;
  std::vector<float> m_echoSamples;

  // The energy of the input and that of what is left of it, smoothed.
  float m_nearEnergy = 0;
  float m_outEnergy = 0;

  // For how many blocks with a far end the filter has been of no use, fewer after a trial; and what
  // both have left since the trial began.
  int m_uselessFor = 0;
  bool m_tries = false;
  int m_trialBlocks = 0;
  float m_trialEnergy = 0;
  float m_knownEnergy = 0;
};

}  // namespace desktop
