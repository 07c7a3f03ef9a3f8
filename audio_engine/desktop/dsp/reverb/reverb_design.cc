#include "desktop/dsp/reverb/reverb_design.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"

namespace desktop {

namespace {

constexpr double kHighCorner = 5000;  // Hz.
constexpr double kLowCorner = 150;    // Hz.

// The frequency, Hz, at which the reverberation time holds exactly.
constexpr double kMiddle = 750;

// With full damping the end of the spectrum decays 1 + 4 times as fast.
constexpr double kDampedTimes = 4;

// The range of the delay lines at factor 1.
constexpr double kShortestMs = 9;
constexpr double kLongestMs = 23;

// The delays of the diffusers, ms. They have no common divisors, and neither channel has one of the
// other.
constexpr double kDiffuserMs[2][kReverbDiffusers] = {{2.13, 3.61, 5.87, 8.93},
                                                     {1.89, 4.07, 6.31, 8.29}};

bool IsPrime(int number) {
  for (int divisor = 2; divisor * divisor <= number; ++divisor) {
    if (number % divisor == 0) return false;
  }
  return number > 1;
}

// Returns the next prime number of samples: lines without common divisors do not coincide.
int PrimeSamples(double milliseconds, int sampleRate) {
  int samples = std::max(2, static_cast<int>(milliseconds * sampleRate / 1000));
  while (!IsPrime(samples)) ++samples;
  return samples;
}

float StepOf(double corner, int sampleRate) {
  return static_cast<float>(1 - std::exp(-2 * std::numbers::pi * corner / sampleRate));
}

// Returns the response of a one-pole low-pass of this coefficient at a frequency given by e^(-jw).
std::complex<double> LowPass(float step, std::complex<double> delay) {
  const double share = step;
  return share / (1.0 - (1 - share) * delay);
}

std::complex<double> Unit(double frequency, int sampleRate) {
  return std::polar(1.0, -2 * std::numbers::pi * frequency / sampleRate);
}

// Returns the part that remains after the losses of highs and lows.
double Remaining(const ReverbDesign& design, float highLoss, float lowLoss,
                 std::complex<double> delay) {
  const auto high = 1.0 - double{highLoss} * (1.0 - LowPass(design.highStep, delay));
  const auto low = 1.0 - double{lowLoss} * LowPass(design.lowStep, delay);
  return std::norm(high * low);
}

// Returns the part of the energy that one pass leaves, as the mean over the lines, which the mixing
// keeps equal.
double EnergyPerPass(const ReverbDesign& design, std::complex<double> delay) {
  double energy = 0;
  for (const ReverbLine& line : design.lines) {
    const double gain = line.gain;
    energy += gain * gain * Remaining(design, line.highLoss, line.lowLoss, delay);
  }
  return energy / kReverbLines;
}

// Returns the energy of the diffused input itself and of all that comes out of the lines, over the
// whole spectrum.
double TailEnergy(const ReverbDesign& design, int sampleRate) {
  constexpr int kPoints = 256;
  double sum = 0;
  for (int i = 0; i < kPoints; ++i) {
    const auto delay = Unit((i + 0.5) / kPoints * sampleRate / 2, sampleRate);
    const double pass = EnergyPerPass(design, delay);
    sum += (1 + 2 * pass / (1 - pass)) * Remaining(design, design.outputHighLoss, 0, delay);
  }
  return sum / kPoints;
}

}  // namespace

NreverbFv3Parameter InRange(const NreverbFv3Parameter& parameter) {
  return {.Factor = InRange(parameter.Factor, 0.5f, 5),
          .Wet = InRange(parameter.Wet, -100, 20),
          .Dry = InRange(parameter.Dry, -100, 20),
          .Feedback = InRange(parameter.Feedback, 0, 1),
          .Damp1 = InRange(parameter.Damp1, 0, 1),
          .Damp2 = InRange(parameter.Damp2, 0, 1),
          .Damp3 = InRange(parameter.Damp3, 0, 1),
          .ReverbTime = InRange(parameter.ReverbTime, 0.2f, 20),
          .Width = InRange(parameter.Width, 0, 1),
          .Delay = InRange(parameter.Delay, 0, 500)};
}

ReverbDesign DesignReverb(const NreverbFv3Parameter& parameter, int sampleRate) {
  ReverbDesign design;
  design.highStep = StepOf(kHighCorner, sampleRate);
  design.lowStep = StepOf(kLowCorner, sampleRate);
  design.diffusion = 0.35f + 0.4f * parameter.Feedback;
  design.preDelay = static_cast<int>(std::lround(double{parameter.Delay} * sampleRate / 1000));
  design.outputHighLoss = parameter.Damp3;
  for (size_t c = 0; c < 2; ++c) {
    for (size_t k = 0; k < kReverbDiffusers; ++k) {
      design.diffusers[c][k] = PrimeSamples(kDiffuserMs[c][k], sampleRate);
    }
  }
  const double factor = parameter.Factor;
  const double time = parameter.ReverbTime;
  for (size_t i = 0; i < kReverbLines; ++i) {
    ReverbLine& line = design.lines[i];
    const double spread = std::pow(kLongestMs / kShortestMs, Ratio(i, kReverbLines - 1));
    line.delay = PrimeSamples(kShortestMs * factor * spread, sampleRate);
    // The loss is in nepers per pass.
    const double loss = std::numbers::ln10 * 3 * line.delay / (sampleRate * time);
    line.highLoss = static_cast<float>(1 - std::exp(-loss * kDampedTimes * parameter.Damp1));
    line.lowLoss = static_cast<float>(1 - std::exp(-loss * kDampedTimes * parameter.Damp2));
    const double middle = Remaining(design, line.highLoss, line.lowLoss, Unit(kMiddle, sampleRate));
    line.gain = static_cast<float>(std::exp(-loss) / std::sqrt(middle));
  }
  design.tailEnergy = TailEnergy(design, sampleRate);
  return design;
}

}  // namespace desktop
