#pragma once

#include <complex>
#include <cstddef>
#include <random>
#include <vector>

#include "desktop/aec/parts/noise_floor.h"
#include "desktop/aec/parts/power_leak.h"
#include "desktop/dsp/real_fft.h"

namespace desktop {

// Takes out what a linear filter has left of the echo: a Wiener gain by frequency, from the
// decision-directed ratio of near end and residual echo (Ephraim and Malah, "Speech enhancement
// using a minimum mean-square error short-time spectral amplitude estimator", 1984). The residual
// is what the filter doubts of its echo (Enzner and Vary, 2006) and what leaks, in power, from its
// echo and from the far end itself, which tells of loudspeakers that distort. Beside a near talker
// that is chance as well: of a far end that the filter knows only what is surely no chance counts.
// Where nothing but residual is left it is overestimated, so that it goes wholly, and noise like
// that of the room takes its place. Mono, in blocks of 10 ms. Allocates in the constructor only.
class EchoSuppressor {
 public:
  // By what the residual is multiplied beside a near talker and without one.
  struct Strength {
    float least;
    float most;
  };

  // The delay of the echo, in blocks, lies between these.
  struct Delay {
    size_t first;
    size_t last;
  };
  static constexpr size_t kMaxDelay = 53;

  // Samples are floats in the 16-bit range.
  explicit EchoSuppressor(size_t block);

  void SetStrength(Strength strength) { m_strength = strength; }

  // By how many samples the result is late.
  size_t Lag() const { return m_taper; }

  // Another echo path: what leaks is learnt anew.
  void Forget() { m_heardBlocks = 0; }

  // Takes the block of the far end that goes with the next one to process.
  void Hear(const float* far);

  // Cleans a block from which `echo` has been taken, in place. doubt: the power of the echo, by bin
  // of a spectrum of two blocks, that the filter has left in its own opinion.
  void Process(const float* echo, const std::vector<float>& doubt, Delay delay, float* samples);

  // Whether most of the last block was echo.
  bool HasEcho() const { return m_hasEcho; }

 private:
  using Spectrum = std::vector<std::complex<float>>;
  using Power = std::vector<float>;

  // Frequencies that are looked at together, and what they were like.
  struct Band {
    size_t begin;
    size_t end;
    PowerLeak ofEcho;
    PowerLeak ofFar;
    float error = 0;
    float expected = 0;
  };

  void Transform(std::vector<float>& past, const float* samples, const std::vector<float>& window,
                 Spectrum& spectrum);
  void MeasurePowers(const std::vector<float>& doubt, Delay delay);
  float HeardPower() const;
  void FollowLeaks();
  void FollowFilter();
  float KnownShare() const;
  void EstimateResidual();
  void ApplyGains();
  void Synthesise(float* samples);

  const size_t m_block;

  // Over so many samples each frame fades into the next.
  const size_t m_taper;
  RealFft m_fft;
  Strength m_strength;
  std::vector<float> m_window;
  std::vector<float> m_farWindow;
  std::vector<float> m_errorPast;
  std::vector<float> m_echoPast;
  std::vector<float> m_farPast;
  std::vector<float> m_frame;
  std::vector<float> m_overlap;
  Spectrum m_error;
  Spectrum m_echo;
  Spectrum m_farNow;

  // The far end's powers above its noise, a ring by block, the newest at m_newest, and in how many
  // blocks it sounded since the start.
  std::vector<Power> m_far;
  size_t m_newest = 0;
  float m_heardBlocks = 0;

  // The share of the far end's power that is more than noise, of late, by bin.
  Power m_farSounds;

  // The powers of the frame by bin; those of the sources last, as rooms do.
  Power m_errorPower;
  Power m_echoPower;
  Power m_farPower;
  Power m_doubt;
  Power m_residual;

  // The power of the near end in the frame before.
  Power m_near;
  std::vector<Band> m_bands;

  // The power of the frame before and after the filter, of late and where the far end sounds.
  float m_before = 0;
  float m_after = 0;

  // How sure it is that there is a near talker, 0 to 1.
  float m_nearness = 0;

  NoiseFloor m_noise;
  NoiseFloor m_farNoise;
  std::minstd_rand m_random;
  bool m_hasEcho = false;
};

}  // namespace desktop
