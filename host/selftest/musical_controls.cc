#include <algorithm>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

// Where 20 ms are a power of 2 of samples, so that this is the window.
constexpr int kWholeRate = 12800;
constexpr size_t kWindow = 256;
constexpr size_t kHop = kWindow / 2;

// One sample in the middle of each window, of these heights in turn; then what lies in the first
// and last three bins.
Waveform Impulses(const std::vector<double>& heights, double beside) {
  Waveform samples(kWholeRate);
  for (size_t i = 1; i < samples.size() / kHop; ++i) {
    samples[i * kHop] = static_cast<float>(0.1 * heights[i % heights.size()]);
  }
  for (size_t i = 0; i < samples.size(); ++i) {
    const double sign = i % 2 == 0 ? 1 : -1;
    const double sine = std::sin(2 * std::numbers::pi * static_cast<double>(i % kHop) / kHop);
    samples[i] += static_cast<float>(beside * (1 + sign) * (1 + sine));
  }
  return samples;
}

// E[p^4] / E[p^2]^2 over windows and bins, each bin divided by its mean. The sine is at right
// angles to the single samples in its bin, the third one, and with half of its amplitude in the
// next.
double KurtosisOf(const std::vector<double>& heights, double beside) {
  constexpr size_t kBins = kHop + 1 - 4;
  double fourths = 0;
  double squares = 0;
  for (size_t bin = 0; bin < kBins; ++bin) {
    const size_t edge = std::min(bin, kBins - 1 - bin);
    const double line = beside * kWindow / 4 * (edge == 0 ? 1 : edge == 1 ? 0.5 : 0);
    double mean = 0;
    double square = 0;
    double fourth = 0;
    for (size_t i = 1; i < kWholeRate / kHop; ++i) {
      const double height = 0.1 * heights[i % heights.size()];
      const double power = height * height + line * line;
      mean += power;
      square += power * power;
      fourth += std::pow(power, 4);
    }
    squares += square / (mean * mean);
    fourths += fourth / std::pow(mean, 4);
  }
  return fourths / (squares * squares);
}

Control Heights(const std::string& name, const std::vector<double>& heights, double beside) {
  return {name,
          "Each window of 20 ms has one sample, in its middle, and so the square of that in each "
          "bin: the kurtosis is that of the squares. What is constant or alternates does not "
          "count, nor do the two bins that it fills on either side; a sine counts in those next "
          "to them.",
          [=] {
            return Scene{.output = {kWholeRate, {Impulses(heights, beside)}},
                         .input = {kWholeRate, {Impulses({1}, 0)}},
                         .searchSeconds = 0.004};
          },
          {{"musical", std::log(KurtosisOf(heights, beside) / KurtosisOf({1}, 0)), 2e-4}}};
}

}  // namespace

std::vector<Control> MusicalControls() {
  return {Heights("windows of four heights", {1, 2, 1.5, 3}, 0),
          Heights("windows of two heights beside a sine", {1, 2}, 0.001)};
}

}  // namespace host
