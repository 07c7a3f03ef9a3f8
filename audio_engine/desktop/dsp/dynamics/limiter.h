#pragma once

#include <vector>

#include "desktop/dsp/dynamics/sliding_maximum.h"
#include "desktop/dsp/sample_blocks.h"
#include "engine_api/effects/effect_parameters.h"

namespace desktop {

// A look-ahead limiter over planar floats of full scale 1 (Zölzer, "DAFX", 2011, chapter 4). The
// gain that each peak needs is held from the look-ahead before the peak until 12 ms after it,
// recovers with the release, and is averaged over the share of the look-ahead that it may take to
// fall: so it is down in time without a step.
class Limiter {
 public:
  // Of a new limiter.
  static constexpr LimiterParameter kDefault = {0, -1, 0, 90, 0, 1, 1, 0, 0, 1, 0};

  // The values brought into their ranges; those without effect are 0.
  static LimiterParameter InRange(const LimiterParameter& parameter);

  // The same settings in the longer record.
  static LimiterParameter ToParameter(const LimiterParam& parameter);

  // Takes effect at the next Process; a change of the look-ahead starts anew.
  void SetParameter(const LimiterParameter& parameter);
  void SetParameter(const LimiterParam& parameter) { SetParameter(ToParameter(parameter)); }

  // How many samples later the sound comes out.
  int Latency(int sampleRate) const;

  // Limits rows[0..channels) in place. Allocates when the rate, the channels or the look-ahead are
  // not those of the last call, and throws when there is no memory.
  void Process(float* const* rows, int channels, size_t frames, int sampleRate);

 private:
  struct Channel {
    SlidingMaximum peak;

    // The mean square, for a level by power.
    double power = 0;

    // The last held level, the gain that it needs, and that gain with release and attack.
    float level = -1;
    double needed = 1;
    double gain = 1;

    // The last gains and their sum, for the average.
    double sum = 0;
    std::vector<double> gains;
    std::vector<float> delay;
  };

  void Prepare(int channels, int sampleRate);
  double GainFor(float level) const;
  double NextGain(Channel& channel, float level);
  float LevelOf(Channel& channel, float sample) const;

  LimiterParameter m_parameter = kDefault;
  bool m_changed = true;
  int m_sampleRate = 0;
  int m_channels = 0;
  int m_latency = 0;

  // The next places in the delay lines and in the averages.
  size_t m_at = 0;
  size_t m_gainAt = 0;
  double m_preGain = 1;
  double m_threshold = 1;
  double m_ceiling = 1;
  double m_attack = 1;
  double m_release = 1;
  double m_rms = 0;
  Channel m_channel[kMaxEffectChannels];
};

}  // namespace desktop
