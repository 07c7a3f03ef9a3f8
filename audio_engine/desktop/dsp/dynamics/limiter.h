#pragma once

#include <vector>

#include "desktop/dsp/dynamics/sliding_maximum.h"
#include "desktop/dsp/sample_pieces.h"
#include "engine_api/effects/effect_parameters.h"

namespace desktop {

// A look-ahead limiter over planar floats of full scale 1. The gain that each peak needs is held
// from the look-ahead before the peak until 12 ms after it, recovers with the release, and is
// averaged over the share of the look-ahead that it may take to fall: so it is down in time without
// a step.
class Limiter {
 public:
  Limiter();

  // The same fields mean the same in both records. Takes effect at the next Process; a change of
  // the look-ahead starts anew.
  void SetParameter(const LimiterParameter& parameter);
  void SetParameter(const LimiterParam& parameter);

  // How many samples later the sound comes out.
  int Latency(int sampleRate) const;

  // Forgets all that it heard.
  void Flush() { m_sampleRate = 0; }

  // Limits rows[0..channels) in place. Allocates when the rate, the channels or the look-ahead are
  // not those of the last call, and throws when there is no memory.
  void Process(float* const* rows, int channels, int frames, int sampleRate);

 private:
  struct Channel {
    SlidingMaximum peak;
    double power = 0;   // Mean square, for a level by power.
    float level = -1;   // The last held level, and
    double needed = 1;  // the gain that it needs.
    double gain = 1;    // With release and attack.
    double sum = 0;     // Of the last gains, for the average.
    std::vector<double> gains;
    std::vector<float> delay;
  };

  void Prepare(int channels, int sampleRate);
  double GainFor(float level) const;
  double NextGain(Channel& channel, float level);
  float LevelOf(Channel& channel, float sample) const;

  LimiterParameter m_parameter;
  bool m_changed = true;
  int m_sampleRate = 0;
  int m_channels = 0;
  int m_latency = 0;
  size_t m_at = 0;      // In the delay lines.
  size_t m_gainAt = 0;  // In the averages.
  double m_preGain = 1;
  double m_threshold = 1;
  double m_ceiling = 1;
  double m_attack = 1;
  double m_release = 1;
  double m_rms = 0;
  Channel m_channel[kMostEffectChannels];
};

}  // namespace desktop
