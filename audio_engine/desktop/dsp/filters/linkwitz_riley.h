#pragma once

#include "desktop/dsp/filters/biquad.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {

// Butterworth sections and the all-pass with the same poles (Bristow-Johnson, Audio EQ Cookbook).
BiquadCoefficients ButterworthLowPass(double corner, double sampleRate);
BiquadCoefficients ButterworthHighPass(double corner, double sampleRate);
BiquadCoefficients ButterworthAllPass(double corner, double sampleRate);

// Splits a sound into three bands whose sum has its spectrum: each edge is a pair of fourth-order
// Linkwitz-Riley filters (Active crossover networks for noncoincident drivers, 1976), and the low
// band turns its phase as the upper edge turns that of the others.
class ThreeBandSplit {
 public:
  void Reset(double lowEdge, double highEdge, double sampleRate);

  // Splits one sample into the bands low, middle and high.
  void Run(int channel, double in, double* bands) { m_channels[channel].Run(in, bands); }

 private:
  struct Channel {
    void Run(double in, double* bands) {
      bands[0] = turn.Run(low[1].Run(low[0].Run(in)));
      const double above = rest[1].Run(rest[0].Run(in));
      bands[1] = middle[1].Run(middle[0].Run(above));
      bands[2] = high[1].Run(high[0].Run(above));
    }

    Biquad low[2];
    Biquad rest[2];
    Biquad middle[2];
    Biquad high[2];
    Biquad turn;
  };

  Channel m_channels[kMaxEffectChannels];
};

}  // namespace desktop
