#include <algorithm>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

// The delay is looked for within 5 ms, so that a train of single samples is not taken for one that
// is a period later.
Scene Pair(Waveform reference, Waveform output, int rate) {
  return {.output = {rate, {std::move(output)}},
          .reference = {rate, {std::move(reference)}},
          .searchSeconds = 0.005};
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
            const Waveform reference = Impulses(16000, 480, 0.5);
            Waveform output = reference;
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
        const Waveform reference = Impulses(16000, 480, 0.5);
        Waveform output = reference;
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
            Waveform reference(Frames(rate, 3));
            Waveform output = reference;
            for (size_t i = 0; i < bands; ++i) {
              const double hz = 1000 * std::pow(10, (static_cast<double>(i) - 13) / 10);
              const Waveform tone = Sine(rate, 3, hz, 0.03, static_cast<double>(i * i));
              reference = Sum(reference, tone);
              output = Sum(output, Scaled(tone, std::pow(10, decibels[i] / 20)));
            }
            return Pair(reference, output, rate);
          },
          {{"band_difference", mean, 0.03}, {"band_difference_worst", worst, 0.03}}};
}

// What passes a low-pass of linear phase, 100 samples to either side.
Waveform Below(std::span<const float> samples, double share) {
  constexpr int kReach = 100;
  Waveform passed(samples.size());
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
        const Waveform noise = WhiteNoise(4 * static_cast<size_t>(rate), 0.1, 34);
        const Waveform low = Below(noise, share);
        const Waveform high = Scaled(Sum(noise, Scaled(low, -1)), 0.1);
        return Pair(Sum(low, high), Sum(low, Scaled(high, 1 + off)), rate);
      },
      {{"fw_seg_snr", (13 * weight * ofLow + 12 * ofHigh) / (13 * weight + 12), 0.4}}};
}

Control SoftBand(double below, double gain, double worst) {
  return {
      "a band " + std::to_string(below) + " dB below another, at a gain of " + std::to_string(gain),
      "Bands down to 60 dB below the strongest count: of two the strong one is as it was, as it "
      "makes the common gain, and the soft one is off by its gain. What is left in the output "
      "counts as 100 dB below the strong one at least.",
      [=] {
        const int rate = 16000;
        const Waveform noise = WhiteNoise(Frames(rate, 3), 1e-7, 35);
        const Waveform strong = Sum(Sine(rate, 3, 1000, 0.5), noise);
        const Waveform soft = Sine(rate, 3, 3981.07, 0.5 * std::pow(10, -below / 20));
        return Pair(Sum(strong, soft), Sum(strong, Scaled(soft, gain)), rate);
      },
      {{"band_difference_worst", worst, 0.05}}};
}

// At 16 kHz the windows of the long-term spectrum have 4096 samples.
Control OneWindow(size_t samples, const std::string& reason) {
  return {"a copy of " + std::to_string(samples) + " samples",
          "Bands take one window at least.",
          [samples] {
            const Waveform noise = WhiteNoise(samples, 0.1, 39);
            return Pair(noise, noise, 16000);
          },
          {{"band_difference", 0, 0.001, reason}, {"band_difference_worst", 0, 0.001, reason}}};
}

Control LostBand() {
  return {"a tone 80 dB below another, gone",
          "Bands more than 60 dB below the strongest bin of the block do not count; those around "
          "the strong tone are as they were.",
          [] {
            const int rate = 16000;
            const Waveform noise = WhiteNoise(Frames(rate, 3), 1e-7, 36);
            const Waveform strong = Sum(Sine(rate, 3, 1000, 0.5), noise);
            return Pair(Sum(strong, Sine(rate, 3, 3000, 0.5e-4)), strong, rate);
          },
          {{"fw_seg_snr", 35, 0.02}}};
}

}  // namespace

std::vector<Control> SpectralControls() {
  return {Comb(0.5),
          Comb(-0.3),
          HalfSilent(),
          SoftBand(40, std::pow(10, -0.5), 10),
          SoftBand(59.5, std::pow(10, -0.5), 10),
          SoftBand(60.5, std::pow(10, -0.5), 0),
          SoftBand(50, 0, 50),
          OneWindow(4095, audio_measures::kTooShort),
          OneWindow(4096, ""),
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
