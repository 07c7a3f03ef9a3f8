#include <algorithm>
#include <array>
#include <cmath>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 16000;
constexpr size_t kFrames = 32000;
constexpr size_t kBlock = 320;  // 20 ms

Scene Pair(Waveform reference, Waveform output, int rate = kRate) {
  return {.output = {rate, {std::move(output)}}, .reference = {rate, {std::move(reference)}}};
}

std::vector<Expected> Undamaged() {
  return {{"snr", 120, 1e-6},
          {"si_sdr", 120, 1e-6},
          {"seg_snr", 35, 1e-6},
          {"fw_seg_snr", 35, 1e-6},
          {"cepstral_distance", 0, 1e-3},
          {"lsd", 0, 1e-3},
          {"band_difference", 0, 1e-3},
          {"band_difference_worst", 0, 1e-3},
          {"stoi", 1, 1e-4},
          {"estoi", 1, 1e-4}};
}

Control Copied(int rate, double gain, size_t later) {
  return {"a copy at gain " + std::to_string(gain) + ", " + std::to_string(later) +
              " samples later, at " + std::to_string(rate) + " Hz",
          "Delay, gain and polarity are taken out first, and nothing else was done: every ratio is "
          "at its upper end, every distance 0, every correlation 1.",
          [=] {
            const Waveform noise = WhiteNoise(Frames(rate, 1) + later, 0.1, 21);
            return Pair(Waveform(noise.begin() + static_cast<std::ptrdiff_t>(later), noise.end()),
                        Scaled(std::span(noise).first(Frames(rate, 1)), gain), rate);
          },
          Undamaged()};
}

// As soft as no recording is, and still far above the least of a float.
Control SoftCopy() {
  return {"a copy of noise at -180 dB", "Nothing depends on the level: as louder copies.",
          [] {
            const Waveform noise = WhiteNoise(kFrames, 1e-9, 41);
            return Pair(noise, Scaled(noise, 2));
          },
          Undamaged()};
}

Control Noisy(double snr, double rms = 0.1) {
  return {
      "white noise of RMS " + std::to_string(rms) + " at an SNR of " + std::to_string(snr) + " dB",
      "The noise is orthogonal to the signal in every 20 ms and has its energy less the SNR in "
      "each: all three ratios are that SNR, and the gain 1, to the rounding of floats; where "
      "blocks "
      "start in the middle of those 20 ms, their SNR varies by a few tenths of a dB, the mean "
      "by a hundredth.",
      [=] {
        const Waveform reference = WhiteNoise(kFrames, rms, 22);
        return Pair(reference, Sum(reference, NoiseBelow(reference, snr, kBlock, 23)));
      },
      {{"snr", snr, 0.002},
       {"si_sdr", snr, 0.002},
       {"seg_snr", std::clamp(snr, -10.0, 35.0), 0.01},
       {"gain", 0, 0.002}}};
}

// Noise whose RMS is the same in each millisecond.
Waveform Even(size_t count, size_t millisecond, uint64_t seed) {
  Waveform samples = WhiteNoise(count, 1, seed);
  for (size_t start = 0; start < count; start += millisecond) {
    const auto part = std::span(samples).subspan(start, std::min(millisecond, count - start));
    const double gain = 0.1 * std::sqrt(static_cast<double>(part.size()) / Energy(part));
    for (float& sample : part) sample = static_cast<float>(sample * gain);
  }
  return samples;
}

Control SegmentsApart() {
  return {"seconds at -13, 5, 60 and 20 dB in turn",
          "Held within -10 and 35 dB their mean is (-10 + 5 + 35 + 20) / 4 = 12.5 dB, but for one "
          "block in fifty that lies across a border and can be 20 dB off.",
          [] {
            constexpr std::array kSnrs = {-13.0, 5.0, 60.0, 20.0};
            const Waveform reference = WhiteNoise(8 * kRate, 0.1, 24);
            Waveform output;
            for (size_t i = 0; i < 8; ++i) {
              const auto from = std::span(reference).subspan(i * kRate, kRate);
              Append(output, Sum(from, NoiseBelow(from, kSnrs[i % 4], kBlock, 25 + i)));
            }
            return Pair(reference, output);
          },
          {{"seg_snr", 12.5, 0.4}}};
}

// The mean, over blocks of `count` milliseconds, of the SNR where each is hit with this chance.
double MeanSnr(int count, double chance) {
  double mean = 0;
  double ways = 1;
  for (int k = 0; k <= count; ++k) {
    const double noise = (k + (count - k) * 1e-6) / count;
    mean += ways * std::pow(chance, k) * std::pow(1 - chance, count - k) *
            std::min(35.0, -10 * std::log10(noise));
    ways = ways * (count - k) / (k + 1);
  }
  return mean;
}

Control Hits() {
  return {"single milliseconds at 0 dB, all others at 60 dB",
          "One millisecond in 20 is hit, by chance: the number of hits in a block of 20 ms has the "
          "binomial distribution, over which the mean is taken; 1000 blocks leave it uncertain by "
          "0.5 dB. In blocks of 10 ms it would be 6 dB higher.",
          [] {
            constexpr int rate = 8000;
            const Waveform reference = Even(20 * rate, rate / 1000, 31);
            Waveform noise = NoiseBelow(reference, 0, rate / 1000, 32);
            Random random(33);
            for (size_t start = 0; start < noise.size(); start += rate / 1000) {
              if (random.Uniform() < 0.05) continue;
              for (float& sample : std::span(noise).subspan(start, rate / 1000)) sample *= 1e-3F;
            }
            return Pair(reference, Sum(reference, noise), rate);
          },
          {{"seg_snr", MeanSnr(20, 0.05), 1}}};
}

Control Constant() {
  return {
      "a constant of 0.05 added to noise at 20 dB",
      "Means are taken off for the scale-invariant ratio, which stays at 20 dB, while the "
      "constant is a difference like any other for the SNR: 10 log10(0.01 / (0.0001 + 0.0025)).",
      [] {
        // Every 20 ms of the reference have the mean 0, so that the constant is orthogonal.
        Waveform reference = WhiteNoise(kFrames, 1, 26);
        for (size_t start = 0; start < kFrames; start += kBlock) {
          const auto block = std::span(reference).subspan(start, kBlock);
          double mean = 0;
          for (const float sample : block) mean += sample / static_cast<double>(kBlock);
          for (float& sample : block) sample -= static_cast<float>(mean);
          const double gain = 0.1 * std::sqrt(kBlock / Energy(block));
          for (float& sample : block) sample = static_cast<float>(sample * gain);
        }
        Waveform output = Sum(reference, NoiseBelow(reference, 20, kBlock, 27));
        for (float& sample : output) sample += 0.05F;
        return Pair(reference, output);
      },
      {{"si_sdr", 20, 0.05}, {"snr", 10 * std::log10(0.01 / 0.0026), 0.05}}};
}

Control LastBit() {
  return {"1 LSB of 16 bits up or down at each sample",
          "The difference has the magnitude 2^-15 throughout: below a signal of RMS 0.1 by 20 "
          "log10(0.1 * 2^15) dB, to what chance leaves common to both, 0.01 dB.",
          [] {
            Waveform reference = WhiteNoise(kFrames, 1, 28);
            reference = Scaled(reference, 0.1 * std::sqrt(kFrames / Energy(reference)));
            Waveform output = reference;
            Random random(29);
            for (float& sample : output) sample += random.Bits() % 2 == 0 ? 0x1p-15F : -0x1p-15F;
            return Pair(reference, output);
          },
          {{"snr", 20 * std::log10(0.1 * 0x1p15), 0.01},
           {"si_sdr", 20 * std::log10(0.1 * 0x1p15), 0.01},
           {"seg_snr", 35, 1e-6},
           {"lsd", 0, 0.05},
           {"stoi", 1, 1e-3},
           {"estoi", 1, 1e-3}}};
}

Control HalvesApart() {
  const double up = 20 * std::log10(1.1);
  const double down = -20 * std::log10(0.9);
  return {
      "the first half 10 % louder, the second 10 % softer",
      "The gain of all is 1, and each block lies 10 % beside its reference: every SNR is 20 dB, "
      "log spectra differ by 20 log10 1.1 and 20 log10 0.9 in one half each, linear predictors "
      "not at all, and the levels of the whole by 10 log10((1.21 + 0.81) / 2). Some blocks lie "
      "on the border.",
      [] {
        Waveform half = WhiteNoise(kFrames, 0.1, 30);
        Waveform reference = half;
        Append(reference, half);
        Waveform output = Scaled(half, 1.1);
        Append(output, Scaled(half, 0.9));
        return Pair(reference, output);
      },
      {{"snr", 20, 0.01},
       {"si_sdr", 20, 0.01},
       {"seg_snr", 20, 0.01},
       {"fw_seg_snr", 20, 0.1},
       {"lsd", (up + down) / 2, 0.005},
       {"cepstral_distance", 0, 0.01},
       {"band_difference", 10 * std::log10(1.01), 0.01},
       {"gain", 0, 0.01}}};
}

// Multiples of 2^-20, all of them once more of the other sign, so that no sum is rounded.
Control WithItsMean() {
  return {"a copy that has its own mean, 0, among its samples",
          "One sample without a part in the energy makes no silence.",
          [] {
            Waveform noise = WhiteNoise(kFrames / 2, 0.1, 43);
            for (float& sample : noise) sample = std::round(sample * 0x1p20F) * 0x1p-20F;
            noise.front() = 0;
            Append(noise, Scaled(noise, -1));
            return Pair(noise, noise);
          },
          {{"si_sdr", 120, 1e-6}}};
}

// A constant of 0.5 beside what changes sign as often as this, in turn.
Waveform Turning(size_t samples, double height) {
  Waveform turning(kFrames);
  for (size_t i = 0; i < kFrames; ++i) {
    turning[i] = static_cast<float>(0.5 + (i / samples % 2 == 0 ? height : -height));
  }
  return turning;
}

Control NothingInCommon(double height, const std::string& reason) {
  return {"two constants, one with a sine of half the rate, one with squares of a quarter at " +
              std::to_string(height),
          "Less its mean either has nothing of the other in it, or nothing is left at all. Gain "
          "and polarity are those of the constants.",
          [height] { return Pair(Turning(1, 0x1p-6), Turning(2, height)); },
          {{.measure = "si_sdr", .reason = reason},
           {"gain", -10 * std::log10(1 + 0x1p-10) * 2, 1e-4},
           {"polarity", 1, 1e-9}}};
}

}  // namespace

std::vector<Control> ReferenceControls() {
  std::vector<Control> controls = {Copied(8000, 1, 0),      Copied(16000, -1, 0),
                                   Copied(16000, 0.5, 37),  Copied(44100, 1, 0),
                                   Copied(48000, -0.25, 0), Copied(192000, 1, 0)};
  for (const double snr : {-13, -10, 0, 10, 20, 30, 40}) controls.push_back(Noisy(snr));
  controls.push_back(Noisy(10, 1e-9));
  controls.push_back(SoftCopy());
  controls.push_back(SegmentsApart());
  controls.push_back(Hits());
  controls.push_back(Constant());
  controls.push_back(LastBit());
  controls.push_back(HalvesApart());
  controls.push_back(WithItsMean());
  controls.push_back(NothingInCommon(0x1p-6, "nothing of the reference in it"));
  controls.push_back(NothingInCommon(0, audio_measures::kSilence));
  return controls;
}

}  // namespace host
