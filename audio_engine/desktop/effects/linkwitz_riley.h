#pragma once

#include "desktop/effects/sample_pieces.h"

namespace desktop {

// A second-order filter, transposed direct form II, for each channel of a stereo sound.
struct Biquad {
  double b0 = 1, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
  double state[kMostEffectChannels][2] = {};

  double Run(int channel, double in) {
    double* s = state[channel];
    const double out = b0 * in + s[0];
    s[0] = b1 * in - a1 * out + s[1];
    s[1] = b2 * in - a2 * out;
    return out;
  }
};

// Butterworth sections and the all-pass with the same poles (Bristow-Johnson, Audio EQ Cookbook).
Biquad ButterworthLowPass(double corner, double sampleRate);
Biquad ButterworthHighPass(double corner, double sampleRate);
Biquad ButterworthAllPass(double corner, double sampleRate);

// Splits a sound into three bands whose sum has its spectrum: each edge is a pair of fourth-order
// Linkwitz-Riley filters (Active crossover networks for noncoincident drivers, 1976), and the low
// band turns its phase as the upper edge turns that of the others.
class ThreeBandSplit {
 public:
  void Reset(double lowEdge, double highEdge, double sampleRate);

  // Bands low, middle, high of one sample.
  void Run(int channel, double in, double* bands) {
    bands[0] = m_turn.Run(channel, m_low[1].Run(channel, m_low[0].Run(channel, in)));
    const double rest = m_rest[1].Run(channel, m_rest[0].Run(channel, in));
    bands[1] = m_middle[1].Run(channel, m_middle[0].Run(channel, rest));
    bands[2] = m_high[1].Run(channel, m_high[0].Run(channel, rest));
  }

 private:
  Biquad m_low[2];
  Biquad m_rest[2];
  Biquad m_middle[2];
  Biquad m_high[2];
  Biquad m_turn;
};

}  // namespace desktop
