#pragma once

#include "desktop/dsp/dynamics/sliding_maximum.h"

namespace desktop {

struct CompressorSettings {
  // dBFS of the peak; below it the gain is exactly 1.
  double threshold;

  // dB in for each dB out above the knee.
  double ratio;

  // How far the knee reaches up from the threshold, dB; 0 for none.
  double knee;

  // The time constants of the gain in dB.
  double attackMs;
  double releaseMs;
};

// The gain of a compressor without make-up gain: a static curve on the peak level and a smooth
// branching detector in dB (Giannoulis, Massberg and Reiss, Digital dynamic range compressor
// design, 2012). A peak counts for 12 ms, so that a tone of 45 Hz and more keeps a steady gain.
class Compressor {
 public:
  explicit Compressor(const CompressorSettings& settings) : m_settings(settings) {}

  // Starts anew at a rate in Hz; allocates when the rate grows.
  void Reset(int sampleRate);

  // The gain (at most 1) for a sample of which the louder channel has this absolute value (full
  // scale 1).
  float Gain(float level);

  // What the static curve takes off a steady peak level, dB.
  double Reduction(double levelDb) const;

 private:
  CompressorSettings m_settings;
  SlidingMaximum m_peak;
  double m_attack = 1;
  double m_release = 1;

  // The last peak, and the reduction in dB that goes with it.
  float m_level = 0;
  double m_target = 0;

  // The present reduction in dB, and the gain that goes with it.
  double m_reduction = 0;
  float m_gain = 1;
};

}  // namespace desktop
