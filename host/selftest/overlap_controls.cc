#include <algorithm>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 8000;
constexpr size_t kFrames = 8000;
constexpr double kLoud = 10;

Scene Pair(Waveform reference, Waveform output, double searchSeconds = 0.01) {
  return {.output = {kRate, {std::move(output)}},
          .reference = {kRate, {std::move(reference)}},
          .searchSeconds = searchSeconds};
}

Waveform Cut(const Waveform& samples, std::ptrdiff_t first, size_t count) {
  const auto from = samples.begin() + first;
  return {from, from + static_cast<std::ptrdiff_t>(count)};
}

// Both ends of what a reference and an output that is so much later have in common are loud.
Control LoudEnds(std::ptrdiff_t later) {
  return {
      "noise " + std::to_string(later) +
          " samples late, loud in the first and last sample that both have",
      "The noise is 20 dB below all that both have, most of which is in those two samples, as is "
      "half of the noise, of opposite signs. At a whole number of samples white noise is not what "
      "an interpolation leaves of it.",
      [later] {
        const auto apart = static_cast<size_t>(std::abs(later));
        Waveform common = WhiteNoise(kFrames, 0.1, 71);
        common.front() = common.back() = 0;
        const double half = 0.005 * (Energy(common) + 2 * kLoud * kLoud);
        Waveform noise = NoiseBelow(common, 10 * std::log10(Energy(common) / half), kFrames, 72);
        common.front() = common.back() = kLoud;
        noise.front() = static_cast<float>(std::sqrt(half / 2));
        noise.back() = -noise.front();
        const Waveform noisy = Sum(common, noise);
        const Waveform before = WhiteNoise(apart, 0.1, 73);
        Waveform reference = later < 0 ? before : common;
        Waveform output = later < 0 ? noisy : before;
        Append(reference, later < 0 ? common : before);
        Append(output, later < 0 ? before : noisy);
        return Pair(reference, output);
      },
      {{"delay", static_cast<double>(later) / kRate, 1e-12},
       {"gain", 0, 0.002},
       {"snr", 20, 0.002},
       {"si_sdr", 20, 0.002}}};
}

// A delay of a whole number of samples explains the noise as well as any other.
Control WrongEnds(const std::string& copy, double noise) {
  const double snr = -10 * std::log10(0.01 + noise);
  return {
      copy + " with another first and last sample",
      "Both are off by as much, together 20 dB below all there is, which an interpolation would "
      "leave as it is but for 64 samples at either end.",
      [noise] {
        Waveform reference = TimedNoise(kFrames, 0.1, 97).At(0, 1, kFrames);
        reference.front() = reference.back() = 0;
        Waveform output =
            Sum(reference, Scaled(NoiseBelow(reference, 0, kFrames, 100), std::sqrt(noise)));
        const double wrong = std::sqrt(0.005 * Energy(reference));
        output.front() += static_cast<float>(wrong);
        output.back() -= static_cast<float>(wrong);
        return Pair(reference, output);
      },
      {{"delay", 0, 1e-12}, {"gain", 0, 0.002}, {"snr", snr, 0.002}, {"si_sdr", snr, 0.002}}};
}

// So many samples late, beside noise that leaves the delay known to as many.
Control NearlyWhole(double later, double standardError, bool isWhole) {
  const double slope = 0.8 * std::numbers::pi / std::numbers::sqrt3;
  const double noise = standardError * slope * std::sqrt(kFrames);
  return {"a delay of " + std::to_string(later * 1e6) + " millionths of a sample, known to " +
              std::to_string(standardError * 1e6),
          "White noise below 0.8 of half the rate turns by 0.8 pi / sqrt(3) from sample to sample. "
          "Within four standard errors of none, and where the error that it makes is more than 120 "
          "dB below, a delay is none.",
          [=] {
            const TimedNoise common(kFrames + 400, 0.1, 104);
            const Waveform moved = common.At(200 - later, 1, kFrames);
            const Waveform own = NoiseBelow(moved, 0, kFrames, 106);
            return Pair(common.At(200, 1, kFrames), Sum(moved, Scaled(own, noise)));
          },
          {{"delay", isWhole ? 0 : later / kRate,
            isWhole ? 1e-12 : std::max(later / 4, 5 * standardError) / kRate}}};
}

Control LowTone(int later) {
  return {"a cosine of 15 Hz, " + std::to_string(later) + " samples late",
          "With each sample less one more of the cosine's height overlaps, so that the "
          "correlation is highest at 2 / (8000 (15 / 8000 2 pi)^2), 1.8 samples less. At a "
          "whole number of samples it is the same.",
          [later] {
            const double turn = 2 * std::numbers::pi * 15 / kRate;
            const double start = std::numbers::pi / 2;
            return Pair(Sine(kRate, 1, 15, 0.3, start),
                        Sine(kRate, 1, 15, 0.3, start - later * turn));
          },
          {{"delay", 1.0 * later / kRate, 1e-12}, {"snr", 120, 1e-6}}};
}

// Next to all there is lies within the reach of an interpolation of the start: after it the
// reference is silent, and the output as well or below.
Control BurstAtStart(const std::string& rest, double ofOutput, size_t earlier = 0) {
  return {"60 samples of noise at an SNR of 20 dB, then " + rest,
          "Nothing of the reference is left to be interpolated; whole samples have all of it. Of "
          "the blocks of 20 ms one is not silent.",
          [=] {
            const Waveform burst = WhiteNoise(60, 1, 90);
            Waveform reference(earlier);
            Append(reference, burst);
            Waveform output = Sum(burst, NoiseBelow(burst, 20, burst.size(), 91));
            const Waveform more = WhiteNoise(kFrames - 60, 1, 92);
            reference.resize(kFrames + earlier);
            Append(output, Scaled(more, std::sqrt(ofOutput * Energy(burst) / Energy(more))));
            return Pair(reference, output);
          },
          {{"delay", -static_cast<double>(earlier) / kRate, 1e-12},
           {"gain", 0, 0.001},
           {"snr", -10 * std::log10(0.01 + ofOutput), 0.001},
           {"seg_snr", -10 * std::log10(0.01 + ofOutput * 100 / (kFrames - 60.0)), 0.003}}};
}

// Adds what a number of this size is between samples, of which a sinc passes 0.8 of half the rate.
void AddClick(Waveform& samples, double place, double size) {
  for (int i = -60; i <= 60; ++i) {
    const double whole = std::round(place) + i;
    const double angle = 0.8 * std::numbers::pi * (whole - place);
    const double sinc = std::abs(angle) < 1e-9 ? 1 : std::sin(angle) / angle;
    const double window = 0.5 + 0.5 * std::cos(std::numbers::pi * (whole - place) / 64);
    samples[static_cast<size_t>(whole)] += static_cast<float>(size * sinc * window);
  }
}

// The first or the last sample of the reference that is compared is loud.
Control LoudPlace(double later, bool isFirst) {
  // Interpolation takes 64 samples on either side.
  const double first = std::ceil(64 - later);
  const double last = std::floor(static_cast<double>(kFrames) - 1 - 64 - later);
  const double place = isFirst ? first : last;
  // The squares of sin(0.8 pi n) / (0.8 pi n) have the sum 1.25, of which 0.125 are on either side.
  const double click = 1.25 * kLoud * kLoud;
  const double noise = 0.8 * 0.01 * kFrames;
  const double compared = (0.9 * click + noise) / (click + noise);
  return {"noise " + std::to_string(later) + " samples late, loud at sample " +
              std::to_string(static_cast<int>(place)),
          "Between samples 64 on either side are needed, so that this is the " +
              std::string(isFirst ? "first" : "last") +
              " sample that is compared. It and one side of what surrounds it have most of the "
              "energy, of which the noise is 20 dB below.",
          [=] {
            constexpr size_t kLead = 200;
            const TimedNoise common(kFrames + 2 * kLead, 0.1, 74);
            Waveform reference = common.At(kLead, 1, kFrames);
            AddClick(reference, place, kLoud);
            Waveform output = common.At(kLead - later, 1, kFrames);
            AddClick(output, place + later, kLoud);
            const Waveform own = TimedNoise(kFrames, 1, 75).At(0, 1, kFrames);
            const double gain = std::sqrt(0.01 * Energy(output) / Energy(own));
            return Pair(reference, Sum(output, Scaled(own, gain)));
          },
          {{"delay", later / kRate, 0.02 / kRate},
           {"snr", 20 + 10 * std::log10(compared / (1 - 130.0 / kFrames)), 0.08}}};
}

// A click that only one of both has beside it, but for the first sample.
Control ClickAtStart() {
  return {
      "soft noise 40 samples late that starts with a click",
      "The first sample of the reference is that of the output 40 samples later: no other delay "
      "has a click in common.",
      [] {
        Waveform common = WhiteNoise(kFrames, 1e-4, 76);
        common.front() = 1;
        Waveform output = WhiteNoise(40, 1e-4, 77);
        Append(output, common);
        return Pair(common, output);
      },
      {{"delay", 40.0 / kRate, 0.002 / kRate}, {"snr", 120, 1e-6}}};
}

Control ClickBeyond() {
  return {"a click in the middle of the reference, and one after its end in the output",
          "Of what comes after the end of the shorter one nothing has anything in common with it.",
          [] {
            Waveform common = WhiteNoise(6000, 0.01, 78);
            common[3000] = 1;
            Waveform output = WhiteNoise(40, 0.01, 79);
            Append(output, common);
            Append(output, WhiteNoise(2000, 0.01, 80));
            // A block of the search later, and 20 samples more.
            output[3000 + 3936 + 20] = 3;
            return Pair(common, output);
          },
          {{"delay", 40.0 / kRate, 0.002 / kRate}, {"snr", 120, 1e-6}}};
}

// Half of a tone and noise: most of the tone overlaps without the noise.
Control ToneAndNoise(double level) {
  return {"a sine of 100 Hz and noise 6 dB below, 3200 of 8000 samples late, at " +
              std::to_string(level) + " dB",
          "40 periods earlier the sine is the same and overlaps longer, but the noise, of a fifth "
          "of the energy, is not.",
          [level] {
            Waveform common = WhiteNoise(12000, 0.1, 86);
            common = Sum(common, Sine(kRate, 1.5, 100, 0.2 * std::numbers::sqrt2));
            common = Scaled(common, std::pow(10, level / 20));
            return Pair(Cut(common, 3200, 8000), Cut(common, 0, 8000), 1);
          },
          {{"delay", 3200.0 / kRate, 0.002 / kRate}, {"snr", 120, 1e-6}}};
}

// 80.48 samples to either side.
Control BetweenSamples(std::ptrdiff_t later) {
  const bool isFound = std::abs(later) == 81;
  const double value = static_cast<double>(later) / kRate;
  return {"a delay of " + std::to_string(later) + " samples, looked for within 80.48",
          "The search goes on to the next whole sample.",
          [=] {
            const Waveform noise = WhiteNoise(kFrames + 200, 0.1, 87);
            return Pair(Cut(noise, 100, kFrames), Cut(noise, 100 - later, kFrames), 0.01006);
          },
          {isFound ? Expected{"delay", value, 0.002 / kRate}
                   : Expected{.measure = "delay", .reason = "no clear delay"}}};
}

Control Soft() {
  return {"soft noise, 7 samples late and softer by half",
          "Of an energy far below 1 all figures are those of a loud signal.",
          [] {
            const Waveform noise = WhiteNoise(kFrames + 7, 1e-7, 88);
            return Pair(Cut(noise, 7, kFrames), Scaled(Cut(noise, 0, kFrames), 0.5));
          },
          {{"delay", 7.0 / kRate, 0.002 / kRate},
           {"gain", -20 * std::log10(2.0), 0.002},
           {"polarity", 1, 1e-9},
           {"snr", 120, 1e-6},
           {"si_sdr", 120, 1e-6},
           {"seg_snr", 35, 1e-6}}};
}

Control NearHalfRate() {
  return {
      "noise and a sine at 0.47 of the rate, half a sample late",
      "A window of Kaiser of 128 samples and beta 10.06 ends what it passes sqrt(10.06^2 + pi^2) "
      "/ (128 pi), 0.026 of the rate, below half of it: what interpolation leaves is 90 dB below "
      "up to there.",
      [] {
        constexpr double kHz = 0.47 * kRate;
        const TimedNoise noise(kFrames + 400, 0.1, 89);
        const double turn = 0.47 * 2 * std::numbers::pi;
        return Pair(Sum(noise.At(200, 1, kFrames), Sine(kRate, 1, kHz, 0.2)),
                    Sum(noise.At(199.5, 1, kFrames), Sine(kRate, 1, kHz, 0.2, -0.5 * turn)));
      },
      {{"delay", 0.5 / kRate, 0.002 / kRate}, {"snr", 105, 20}}};
}

}  // namespace

std::vector<Control> OverlapControls() {
  return {BurstAtStart("silence", 0),
          BurstAtStart("silence in the reference", 1e-12),
          BurstAtStart("noise 30 dB below in the output alone, 40 samples earlier", 1e-3, 40),
          NearHalfRate(),
          WrongEnds("a copy", 0),
          WrongEnds("a copy 60 dB above noise", 1e-6),
          NearlyWhole(2e-7, 0, true),
          NearlyWhole(2e-6, 0, false),
          NearlyWhole(3e-3, 1e-3, true),
          NearlyWhole(6e-3, 1e-3, false),
          LowTone(40),
          LowTone(-40),
          ClickAtStart(),
          ClickBeyond(),
          ToneAndNoise(0),
          ToneAndNoise(-120),
          BetweenSamples(81),
          BetweenSamples(-81),
          BetweenSamples(82),
          BetweenSamples(-82),
          Soft(),
          LoudEnds(40),
          LoudEnds(-40),
          LoudPlace(0.5, true),
          LoudPlace(-0.5, true),
          LoudPlace(0.5, false),
          LoudPlace(-0.5, false)};
}

}  // namespace host
