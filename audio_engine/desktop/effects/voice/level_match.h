#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// Holds what comes out of an effect within 3 dB of the level of what went in, over the last
// seconds: a slow gain, 12 dB at most, that does not touch what lies within.
class LevelMatch {
 public:
  // latency: how many frames later the effect gives what it got. Throws when there is no memory.
  LevelMatch(int rate, size_t latency);

  // Measures what goes in, then measures and changes what comes out of it: equally many frames, at
  // most kMaxEffectFrames.
  void Listen(const float* const* rows, size_t channels, size_t frames);
  void Process(float* const* rows, size_t channels, size_t frames);

 private:
  void EndStep();

  // Frames of one step, 10 ms, and the steps of the latency.
  const size_t m_step;
  const size_t m_late;

  // A ring of the energies that went in, by step.
  std::vector<double> m_in;
  size_t m_inFrames = 0;
  size_t m_inSteps = 0;
  double m_inEnergy = 0;
  size_t m_outFrames = 0;
  size_t m_outSteps = 0;
  double m_outEnergy = 0;

  // The mean energies of a step.
  double m_meanIn = 0;
  double m_meanOut = 0;

  // The gain and how much it grows with each frame of this step.
  double m_gain = 1;
  double m_growth = 0;
};

}  // namespace desktop
