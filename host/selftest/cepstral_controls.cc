#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

// The delay is looked for within 5 ms, so that a train of single samples is not taken for one that
// is a period later.
Scene Pair(Waveform reference, Waveform output, int rate, double searchSeconds = 0.005) {
  return {.output = {rate, {std::move(output)}},
          .reference = {rate, {std::move(reference)}},
          .searchSeconds = searchSeconds};
}

// y[n] = x[n] + a y[n - lag]
Waveform Recursive(Waveform samples, double a, size_t lag) {
  for (size_t i = lag; i < samples.size(); ++i) {
    samples[i] += static_cast<float>(a * samples[i - lag]);
  }
  return samples;
}

// 4.343 sqrt(2 sum c_n^2) over the coefficients to p, held below 10.
double Cepstral(double a, size_t lag, size_t p) {
  double sum = 0;
  for (size_t n = 1; n * lag <= p; ++n) {
    const double c = std::pow(a, n) / static_cast<double>(n);
    sum += c * c;
  }
  return std::min(10.0, 10 / std::numbers::ln10 * std::sqrt(2 * sum));
}

Control OnePole(int rate, double a, size_t lag) {
  const size_t p = rate < 10000 ? 10 : 16;
  const double distance = Cepstral(a, lag, p);
  return {"single samples through a pole of " + std::to_string(a) + " at " + std::to_string(lag) +
              " samples, at " + std::to_string(rate) + " Hz",
          "1 / (1 - a z^-k) has the cepstrum a^n / n at each n k, of which those up to 10 count "
          "below 10 kHz and those up to 16 from there on; single samples have none. The window is "
          "not quite flat along a response: 3 %.",
          [=] {
            const Waveform reference = Impulses(rate, static_cast<size_t>(rate) / 33, 0.5);
            return Pair(reference, Recursive(reference, a, lag), rate);
          },
          {{"cepstral_distance", distance, 0.02 + 0.03 * distance}}};
}

// The first `share` of the time through the pole of OnePole(16000, 0.5, 1).
Control PartlyDamaged(double share) {
  const double left = std::max(0.0, share - 0.05) / 0.95;
  return {"a pole of 0.5 for " + std::to_string(share) + " of the time",
          "The worst 5 % of the blocks are left out, and the mean is taken over the others.",
          [share] {
            const Waveform reference = Impulses(16000, 480, 0.5);
            Waveform output = Recursive(reference, 0.5, 1);
            const auto end =
                static_cast<std::ptrdiff_t>(share * static_cast<double>(output.size()));
            std::copy(reference.begin() + end, reference.end(), output.begin() + end);
            return Pair(reference, output, 16000);
          },
          {{"cepstral_distance", left * Cepstral(0.5, 1, 16), 0.07}}};
}

Control FarApart() {
  return {"two poles of 0.95 at one sample",
          "Their cepstrum is twice a^n / n: 13.9 dB, of which 10 count.",
          [] {
            const Waveform reference = Impulses(16000, 480, 0.1);
            return Pair(reference, Recursive(Recursive(reference, 0.95, 1), 0.95, 1), 16000);
          },
          {{"cepstral_distance", 10, 0.01}}};
}

// 1 / ((1 - a z^-1) (1 - b z^-1)).
Control TwoPoles(double a, double b) {
  double sum = 0;
  for (int n = 1; n <= 16; ++n) sum += std::pow((std::pow(a, n) + std::pow(b, n)) / n, 2);
  const double distance = 10 / std::numbers::ln10 * std::sqrt(2 * sum);
  return {"single samples through poles of " + std::to_string(a) + " and " + std::to_string(b),
          "The cepstrum of two poles is (a^n + b^n) / n. The window is not quite flat along a "
          "response: 3 %.",
          [=] {
            const Waveform reference = Impulses(16000, 480, 0.5);
            return Pair(reference, Recursive(Recursive(reference, a, 1), b, 1), 16000);
          },
          {{"cepstral_distance", distance, 0.02 + 0.03 * distance}}};
}

// At 16 kHz blocks of 480 samples start every 120.
Control SingleBlocks() {
  constexpr size_t kFrames = 480 + 62 * 120;
  constexpr size_t kOfFour = 60 + 20 * 120;
  return {"one sample through a pole between two as they were",
          "The first and the last sample are in one block each, that through the pole is in four, "
          "and so are one that is gone and one that is new, which do not count, as one side is "
          "silent there: of six blocks four have the distance of the pole. Five of a hundred that "
          "are left out are none of six.",
          [] {
            Waveform reference(kFrames);
            reference[kOfFour] = 0.5F;
            Waveform output = Recursive(reference, 0.5, 1);
            for (Waveform* each : {&reference, &output}) {
              (*each)[60] = 0.5F;
              (*each)[kFrames - 60] = 0.5F;
            }
            reference[60 + 40 * 120] = 0.1F;
            output[60 + 50 * 120] = 0.1F;
            return Pair(reference, output, 16000);
          },
          {{"cepstral_distance", Cepstral(0.5, 1, 16) * 4 / 6, 0.05}}};
}

constexpr size_t kTones = 10;  // Coefficients at 8 kHz.
using Predictor = std::array<double, kTones>;

// The autocorrelation of 30 ms of a sine of 1 kHz, and of one of 2 kHz at this height.
std::array<double, kTones + 1> OfTones(double second) {
  constexpr size_t kBlock = 240;
  std::array<double, kBlock> block = {};
  for (size_t i = 0; i < kBlock; ++i) {
    const double turn = 2 * std::numbers::pi * static_cast<double>(i) / 8;
    block[i] = (std::sin(turn) + second * std::sin(2 * turn)) *
               (0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(i) / kBlock));
  }
  std::array<double, kTones + 1> lags = {};
  for (size_t lag = 0; lag < lags.size(); ++lag) {
    for (size_t i = lag; i < kBlock; ++i) lags[lag] += block[i] * block[i - lag];
  }
  return lags;
}

// Solves sum of a[k] r[n - k] = r[n] by elimination, r[0] with noise 90 dB below it.
Predictor Solved(std::array<double, kTones + 1> lags) {
  lags[0] += lags[0] * 1e-9;
  std::array<std::array<double, kTones + 1>, kTones> rows = {};
  for (size_t n = 0; n < kTones; ++n) {
    for (size_t k = 0; k < kTones; ++k) rows[n][k] = lags[n > k ? n - k : k - n];
    rows[n][kTones] = lags[n + 1];
  }
  for (size_t pivot = 0; pivot < kTones; ++pivot) {
    for (size_t n = 0; n < kTones; ++n) {
      if (n == pivot) continue;
      const double share = rows[n][pivot] / rows[pivot][pivot];
      for (size_t k = pivot; k <= kTones; ++k) rows[n][k] -= share * rows[pivot][k];
    }
  }
  Predictor predictor = {};
  for (size_t n = 0; n < kTones; ++n) predictor[n] = rows[n][kTones] / rows[n][n];
  return predictor;
}

// n c[n] = n a[n] + sum of k c[k] a[n - k].
Predictor CepstrumOf(const Predictor& predictor) {
  Predictor cepstrum = {};
  for (size_t n = 1; n <= kTones; ++n) {
    double sum = static_cast<double>(n) * predictor[n - 1];
    for (size_t k = 1; k < n; ++k) {
      sum += static_cast<double>(k) * cepstrum[k - 1] * predictor[n - k - 1];
    }
    cepstrum[n - 1] = sum / static_cast<double>(n);
  }
  return cepstrum;
}

Control Tones(double second) {
  const Predictor alone = CepstrumOf(Solved(OfTones(0)));
  const Predictor both = CepstrumOf(Solved(OfTones(second)));
  double squares = 0;
  for (size_t n = 0; n < kTones; ++n) squares += std::pow(alone[n] - both[n], 2);
  return {"a sine of 1 kHz, and with one of 2 kHz at " + std::to_string(second) + " of it",
          "All blocks are alike but for their sign. The predictor of a sine depends on the noise "
          "that each block is taken with, 90 dB below it; the equations are solved by elimination.",
          [second] {
            constexpr int kRate = 8000;
            const Waveform sine = Sine(kRate, 1, 1000, 0.4);
            return Pair(sine, Sum(sine, Sine(kRate, 1, 2000, 0.4 * second)), kRate, 0.0003);
          },
          {{"cepstral_distance", 10 / std::numbers::ln10 * std::sqrt(2 * squares), 0.02}}};
}

}  // namespace

std::vector<Control> CepstralControls() {
  return {OnePole(16000, 0.5, 1),
          OnePole(16000, -0.7, 1),
          OnePole(16000, 0.5, 12),
          OnePole(16000, 0.5, 16),
          OnePole(16000, 0.5, 17),
          OnePole(8000, 0.5, 10),
          OnePole(8000, 0.5, 11),
          OnePole(9999, 0.5, 11),
          OnePole(10000, 0.5, 16),
          OnePole(16000, 0.9, 1),
          PartlyDamaged(0.04),
          PartlyDamaged(0.2),
          FarApart(),
          TwoPoles(0.6, -0.4),
          SingleBlocks(),
          Tones(1e-3)};
}

}  // namespace host
