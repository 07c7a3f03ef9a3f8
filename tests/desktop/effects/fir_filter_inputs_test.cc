#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "engine_api/effects/fir_filter.h"
#include "engine_api/effects/mit_hrtf.h"
#include "support/vector_targets.h"

// The error of the filter against double precision, for every kind of input at full scale.

namespace {

using Floats = std::vector<float>;
using FirFilterInputs = VectorTargetTest;

constexpr size_t kSamples = 2500;

struct Input {
  std::string kind;
  Floats samples;
};

// Sounds of all frequencies, of 16 bits, of 24 and of as many as there are.
std::vector<Input> WideInputs() {
  std::mt19937 random(8);
  std::uniform_real_distribution<double> uniform(-1, 1);
  std::vector<Input> inputs;
  for (const double scale : {32768.0, 8388608.0, 0.0}) {
    Floats noise(kSamples);
    for (float& sample : noise) {
      const double value = uniform(random);
      sample = static_cast<float>(scale > 0 ? std::round(value * (scale - 1)) / scale : value);
    }
    inputs.push_back({"noise, scale " + std::to_string(scale), noise});
  }
  Floats impulses(kSamples);
  impulses[5] = 1;
  impulses[100] = 1.0F / 3;
  impulses[kSamples / 2] = -0.7F;
  inputs.push_back({"impulses", impulses});
  return inputs;
}

std::vector<Input> EveryInput() {
  std::vector<Input> inputs = WideInputs();
  for (const double hertz : {100.0, 997.0, 3000.0, 9000.0, 15000.0}) {
    Floats tone(kSamples);
    for (size_t i = 0; i < kSamples; ++i) {
      const double turns = hertz * static_cast<double>(i) / 44100;
      tone[i] = static_cast<float>(std::sin(2 * std::numbers::pi * turns));
    }
    inputs.push_back({std::to_string(hertz) + " Hz", tone});
  }
  return inputs;
}

std::vector<double> Exact(const Floats& in, const Floats& taps) {
  std::vector<double> out(in.size());
  for (size_t n = 0; n < in.size(); ++n) {
    for (size_t k = 0; k < std::min(taps.size(), n + 1); ++k) {
      out[n] += double{taps[k]} * double{in[n - k]};
    }
  }
  return out;
}

double PeakOf(const std::vector<double>& sound) {
  double peak = 0;
  for (const double sample : sound) peak = std::max(peak, std::abs(sample));
  return peak;
}

double LargestError(const Floats& in, const Floats& taps) {
  const std::unique_ptr<zuwebrtc::FIRFilter> filter(
      zuwebrtc::FIRFilter::Create(taps.data(), taps.size(), in.size()));
  Floats out(in.size());
  filter->Filter(in.data(), in.size(), out.data());
  std::vector<double> error = Exact(in, taps);
  for (size_t n = 0; n < in.size(); ++n) error[n] -= double{out[n]};
  return PeakOf(error);
}

Floats Noise(size_t count, double rms) {
  std::mt19937 random(3);
  std::normal_distribution<double> normal(0, rms / std::sqrt(static_cast<double>(count)));
  Floats taps(count);
  for (float& tap : taps) tap = static_cast<float>(normal(random));
  return taps;
}

Floats Ear(bool right) {
  int azimuth = 90;
  int elevation = 0;
  short ears[2][8192];
  const unsigned count = mit_hrtf_get(&azimuth, &elevation, 44100, 0, ears[0], ears[1]);
  Floats taps;
  for (unsigned i = 0; i < count; ++i) taps.push_back(static_cast<float>(ears[right][i]) / 32768);
  return taps;
}

// A response that is too short for the fast algorithm, at the full scale of its output.
TEST_P(FirFilterInputs, HoldTwoTenMillionthsOfFullScaleInShortResponses) {
  for (const Input& input : WideInputs()) {
    for (const size_t count : {1U, 2U, 3U, 17U, 64U, 96U}) {
      const Floats taps = Noise(count, 2);
      const double peak = std::max(1.0, PeakOf(Exact(input.samples, taps)));
      Floats in = input.samples;
      for (float& sample : in) sample = static_cast<float>(sample / peak);
      EXPECT_LT(LargestError(in, taps), 2e-7) << count << " taps, " << input.kind;
    }
  }
}

// A sum on the way to a soft output can be as loud as the loudest output that the response can have
// for any input: that counts as full scale.
TEST_P(FirFilterInputs, HoldTwoTenMillionthsOfTheLoudestOutputForEveryInput) {
  for (const Floats& taps : {Ear(false), Ear(true), Noise(17, 2), Noise(127, 2), Noise(441, 2),
                             Noise(512, 2), Noise(1024, 2)}) {
    double loudest = 0;
    for (const float tap : taps) loudest += std::abs(double{tap});
    for (const Input& input : EveryInput()) {
      EXPECT_LT(LargestError(input.samples, taps), 2e-7 * loudest)
          << taps.size() << " taps, " << input.kind;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, FirFilterInputs, EveryVectorTarget(), VectorTargetName);

}  // namespace
