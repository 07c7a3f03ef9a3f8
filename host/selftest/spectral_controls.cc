#include <algorithm>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

// The delay is looked for within 5 ms, so that a train of single samples is not taken for one that
// is a period later.
Scene Pair(Samples reference, Samples output, int rate) {
  return {.output = {rate, {std::move(output)}},
          .reference = {rate, {std::move(reference)}},
          .searchSeconds = 0.005};
}

// One sample of this height each `apart` samples, in 2 s: flat spectra.
Samples Impulses(int rate, size_t apart, double height) {
  Samples samples(Frames(rate, 2));
  for (size_t i = apart / 2; i < samples.size(); i += apart) {
    samples[i] = static_cast<float>(height);
  }
  return samples;
}

// y[n] = x[n] + a y[n - lag]
Samples Recursive(Samples samples, double a, size_t lag) {
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
            const Samples reference = Impulses(rate, static_cast<size_t>(rate) / 33, 0.5);
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
            const Samples reference = Impulses(16000, 480, 0.5);
            Samples output = Recursive(reference, 0.5, 1);
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
            const Samples reference = Impulses(16000, 480, 0.1);
            return Pair(reference, Recursive(Recursive(reference, 0.95, 1), 0.95, 1), 16000);
          },
          {{"cepstral_distance", 10, 0.01}}};
}

// Sum of a^2n / n^2.
double Dilogarithm(double a) {
  double sum = 0;
  for (int n = 1; n < 200; ++n) sum += std::pow(a, 2 * n) / n / n;
  return sum;
}

Control Comb(double a) {
  return {"single samples and " + std::to_string(a) + " of each three samples later",
          "ln |1 + a exp(i w)| has the mean square (1 / 2) sum a^2n / (2 n^2) over all w. The "
          "window of 30 ms is 1 % steeper on one of both: 2 %.",
          [a] {
            const Samples reference = Impulses(16000, 480, 0.5);
            Samples output = reference;
            for (size_t i = 3; i < output.size(); ++i) {
              output[i] += static_cast<float>(a * reference[i - 3]);
            }
            return Pair(reference, output, 16000);
          },
          {{"lsd", 20 / std::numbers::ln10 * std::sqrt(Dilogarithm(a) / 2),
            0.02 * 20 / std::numbers::ln10 * std::sqrt(Dilogarithm(a) / 2)}}};
}

Control HalfSilent() {
  // Of three blocks one has its sample in the middle of the window, two have it half as large; in
  // the fourth it falls on the end of the window, where nothing is left of it.
  const double gone = 60 - 2 * 20 * std::log10(2.0) / 3;
  return {
      "single samples, the second half of them gone",
      "Half of the gain is what both have in common, so that the first half lies 6.02 dB above. "
      "Where nothing is left the spectrum counts as 60 dB below the maximum of all: windows of "
      "30 ms every 7.5 ms see a sample whole or, twice of three times, at half its height.",
      [] {
        const Samples reference = Impulses(16000, 480, 0.5);
        Samples output = reference;
        std::fill(output.begin() + 16080, output.end(), 0.0F);
        return Pair(reference, output, 16000);
      },
      {{"lsd", (gone + 20 * std::log10(2.0)) / 2, 0.6}}};
}

// Tones in the middle of every third octave from 50 Hz to 6310 Hz, of one amplitude.
Control Bands(const std::string& name, std::vector<double> decibels) {
  const size_t bands = 22;
  decibels.resize(bands, 0.0);
  double common = 0;
  for (const double each : decibels) common += std::pow(10, each / 20) / bands;
  double mean = 0;
  double worst = 0;
  for (const double each : decibels) {
    const double apart = std::abs(each - 20 * std::log10(common));
    mean += apart / bands;
    worst = std::max(worst, apart);
  }
  return {name,
          "Each band has its own tone and gain; the gain that is taken out is the mean of all, by "
          "least squares. What is left is the difference in each band, to what the windows of two "
          "neighbours share.",
          [decibels] {
            const int rate = 16000;
            Samples reference(Frames(rate, 3));
            Samples output = reference;
            for (size_t i = 0; i < bands; ++i) {
              const double hz = 1000 * std::pow(10, (static_cast<double>(i) - 13) / 10);
              const Samples tone = Sine(rate, 3, hz, 0.03, static_cast<double>(i * i));
              reference = Sum(reference, tone);
              output = Sum(output, Scaled(tone, std::pow(10, decibels[i] / 20)));
            }
            return Pair(reference, output, rate);
          },
          {{"band_difference", mean, 0.03}, {"band_difference_worst", worst, 0.03}}};
}

// What passes a low-pass of linear phase, 100 samples to either side.
Samples Below(std::span<const float> samples, double share) {
  constexpr int kReach = 100;
  Samples passed(samples.size());
  for (int k = -kReach; k <= kReach; ++k) {
    const double turn = std::numbers::pi * k;
    const double sinc = k == 0 ? share : std::sin(turn * share) / turn;
    const auto tap = static_cast<float>(sinc * (0.5 + 0.5 * std::cos(turn / (kReach + 1))));
    for (size_t i = kReach; i + kReach < samples.size(); ++i) {
      passed[i] += tap * samples[i + kReach - static_cast<size_t>(k + kReach)];
    }
  }
  return passed;
}

Control UpperBands(double off) {
  // Energies below and above the edge, whose gain by least squares is taken out.
  const double share = 1085.0 / 4000;
  const double below = 100 * share;
  const double above = 1 - share;
  const double gain = (below + above * (1 + off)) / (below + above);
  const double ofLow = std::min(35.0, -20 * std::log10(std::abs(1 / gain - 1)));
  const double ofHigh = std::max(-10.0, -20 * std::log10(std::abs((1 + off) / gain - 1)));
  const double weight = std::pow(10, 0.2);
  return {
      "noise 20 dB softer from 1085 Hz on, and off there by " + std::to_string(off),
      "Thirteen of the 25 critical bands have their middle below 1085 Hz. Noise is ten times as "
      "high in them and weighs 10^0.2 of it in the others. Each band has an SNR of -20 log10 "
      "of how far it is off once the common gain is taken out, held within -10 and 35 dB. A "
      "band at the edge sees both.",
      [off, share] {
        const int rate = 8000;
        const Samples noise = WhiteNoise(4 * static_cast<size_t>(rate), 0.1, 34);
        const Samples low = Below(noise, share);
        const Samples high = Scaled(Sum(noise, Scaled(low, -1)), 0.1);
        return Pair(Sum(low, high), Sum(low, Scaled(high, 1 + off)), rate);
      },
      {{"fw_seg_snr", (13 * weight * ofLow + 12 * ofHigh) / (13 * weight + 12), 0.4}}};
}

Control SoftBand() {
  return {
      "a band 40 dB below another, 10 dB softer still",
      "Bands down to 60 dB below the strongest count: of two the strong one is as it was, as it "
      "makes the common gain, and the soft one is off by 10 dB.",
      [] {
        const int rate = 16000;
        const Samples noise = WhiteNoise(Frames(rate, 3), 1e-6, 35);
        const Samples strong = Sum(Sine(rate, 3, 1000, 0.5), noise);
        const Samples soft = Sine(rate, 3, 3981.07, 0.005);
        return Pair(Sum(strong, soft), Sum(strong, Scaled(soft, std::pow(10, -0.5))), rate);
      },
      {{"band_difference_worst", 10, 0.05}}};
}

Control LostBand() {
  return {"a tone 80 dB below another, gone",
          "Bands more than 60 dB below the strongest bin of the block do not count; those around "
          "the strong tone are as they were.",
          [] {
            const int rate = 16000;
            const Samples noise = WhiteNoise(Frames(rate, 3), 1e-7, 36);
            const Samples strong = Sum(Sine(rate, 3, 1000, 0.5), noise);
            return Pair(Sum(strong, Sine(rate, 3, 3000, 0.5e-4)), strong, rate);
          },
          {{"fw_seg_snr", 35, 0.02}}};
}

}  // namespace

std::vector<Control> SpectralControls() {
  return {OnePole(16000, 0.5, 1),
          OnePole(16000, -0.7, 1),
          OnePole(16000, 0.5, 12),
          OnePole(16000, 0.5, 16),
          OnePole(16000, 0.5, 17),
          OnePole(8000, 0.5, 10),
          OnePole(8000, 0.5, 11),
          PartlyDamaged(0.04),
          PartlyDamaged(0.2),
          FarApart(),
          OnePole(16000, 0.9, 1),
          Comb(0.5),
          Comb(-0.3),
          HalfSilent(),
          SoftBand(),
          LostBand(),
          UpperBands(0.3),
          UpperBands(6),
          Bands("a band 6 dB softer", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -6}),
          Bands("bands apart in both directions",
                {0, 0, 0, 3, 0, 0, -4, 0, 0, 2, 0, 0, 0, 0, 0, 5, 0, 0, -9}),
          Bands("the lowest and the highest band apart",
                {-2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4})};
}

}  // namespace host
