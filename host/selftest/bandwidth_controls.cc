#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 48000;

Scene Of(Waveform samples, int rate = kRate) { return {.output = {rate, {std::move(samples)}}}; }

// The least that is defined.
Control ShortestBand(Expected expected) {
  return {"0.6 s of a tone of 2 kHz",
          "All energy is in the main lobe of a window of 80 ms or more, 25 Hz to either side.",
          [] { return Of(Sine(16000, 0.6, 2000, 0.5), 16000); },
          {std::move(expected)}};
}

// Two tones, the higher one this far below the lower one.
Control BandwidthControl(const char* name, double below, double energy, double of40Db) {
  return {name,
          "99 % of the energy lies below the higher tone as soon as it has less than 1 % of it, "
          "19.96 dB below the lower one; 40 dB below the maximum it no longer counts. A window of "
          "80 ms and more widens a tone by its main lobe, 25 Hz, and 40 dB down to as much again.",
          [below] {
            Waveform tones = Sine(kRate, 2, 1000, 0.5);
            return Of(Sum(tones, Sine(kRate, 2, 9000, 0.5 * std::pow(10, -below / 20))));
          },
          {{"bandwidth", energy, 30}, {"bandwidth_40db", of40Db, 40}}};
}

// Where 80 ms are a power of 2 of samples, so that this is the window. A bin is 12.5 Hz wide.
constexpr int kWholeRate = 25600;
constexpr size_t kWindow = 2048;

// Exact to the rounding of floats.
Control Spectrum(const std::string& name, const std::string& theory, Waveform (*make)(),
                 double bandwidth, double of40Db, int rate = kWholeRate) {
  const double bin = static_cast<double>(rate) / kWindow;
  return {
      name,
      theory,
      [=] { return Of(make(), rate); },
      {{"bandwidth", bandwidth * bin, 0.002 * bin}, {"bandwidth_40db", of40Db * bin, 0.005 * bin}}};
}

Waveform Impulses(double second, float height = 0.5F) {
  Waveform samples(Frames(kWholeRate, 0.6));
  samples[kWindow / 2] = height;
  samples[kWindow / 2 + 1] = static_cast<float>(height * second);
  return samples;
}

// Bins, of the power 1 + a^2 + 2 a cos w, from the second bin on.
double ShareOfTwo(double a) {
  constexpr size_t kLast = kWindow / 2;
  const auto power = [a](size_t i) {
    const double angle = std::numbers::pi * static_cast<double>(i) / kLast;
    return (1 + a * a + 2 * a * std::cos(angle)) * (i == kLast ? 1 : 2);
  };
  double left = 0;
  for (size_t i = 2; i <= kLast; ++i) left += 0.99 * power(i);
  size_t bin = 2;
  while (left > power(bin)) left -= power(bin++);
  return static_cast<double>(bin) - 0.5 + left / power(bin);
}

// The place between two bins, on a line in decibels, where 1 + a^2 + 2 a cos w is 40 dB below its
// maximum, that of the second bin.
double FallOfTwo(double a) {
  const auto power = [a](double bin) {
    return 1 + a * a + 2 * a * std::cos(2 * std::numbers::pi * bin / kWindow);
  };
  const double limit = power(2) * 1e-4;
  double bin = 0.5 * kWindow;
  while (power(bin) < limit) --bin;
  return bin + std::log(power(bin) / limit) / std::log(power(bin) / power(bin + 1));
}

Waveform Nyquist() {
  Waveform samples(Frames(kWholeRate, 0.6), 0.5F);
  for (size_t i = 0; i < samples.size(); i += 2) samples[i] = -0.5F;
  return samples;
}

std::vector<Control> Spectra() {
  const std::string constant = "What is constant, in the first two bins, does not count. ";
  return {
      Spectrum(
          "one sample in the middle of a window",
          constant + "The spectrum is flat, the last bin half as wide: 0.99 of 2 a bin from "
                     "the second on, and no fall of 40 dB.",
          [] { return Impulses(0); }, ShareOfTwo(0), kWindow / 2.0),
      Spectrum(
          "one sample at a rate at which 80 ms are 1024.48 samples",
          "A window is no shorter than 80 ms: 2048 samples, as at twice the rate.",
          [] { return Impulses(0); }, ShareOfTwo(0), kWindow / 2.0, 12806),
      Spectrum(
          "one sample of 1e-5", "The same as of a larger one.", [] { return Impulses(0, 1e-5F); },
          ShareOfTwo(0), kWindow / 2.0),
      Spectrum(
          "two equal samples in a row",
          constant + "1 + cos w falls to nothing at half of the rate.", [] { return Impulses(1); },
          ShareOfTwo(1), FallOfTwo(1)),
      Spectrum(
          "two samples whose sum and difference are 39.2 dB apart",
          constant + "1 + a^2 + 2 a cos w stays above -40 dB.", [] { return Impulses(0.97833); },
          ShareOfTwo(0.97833), kWindow / 2.0),
      Spectrum("an alternating sample",
               "A window of Hann has three quarters of it in the last bin and a quarter in the one "
               "below, which counts twice: of 1.5, 0.485 are below and 0.985 of 1 in the last.",
               Nyquist, 0.5 * kWindow - 0.5 + 0.5 * 0.985, kWindow / 2.0)};
}

}  // namespace

std::vector<Control> BandwidthControls() {
  std::vector<Control> controls = Spectra();
  controls.push_back(ShortestBand({"bandwidth", 2000, 25}));
  controls.push_back(ShortestBand({"bandwidth_40db", 2000, 40}));
  controls.push_back(BandwidthControl("a tone 19 dB below another", 19, 9000, 9000));
  controls.push_back(BandwidthControl("a tone 21 dB below another", 21, 1000, 9000));
  controls.push_back(BandwidthControl("a tone 39 dB below another", 39, 1000, 9000));
  controls.push_back(BandwidthControl("a tone 41 dB below another", 41, 1000, 1000));
  return controls;
}

}  // namespace host
