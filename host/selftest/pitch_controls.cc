#include <array>
#include <cmath>
#include <functional>

#include "selftest/control.h"

namespace host {

namespace {

// A copy, which is 0 cents higher where it has a pitch.
Control Copy(const std::string& name, const std::string& theory, int rate,
             const std::function<Waveform()>& make, bool voiced) {
  Expected expected = {.measure = "pitch_cents", .value = 0, .tolerance = 1e-6};
  if (!voiced) expected.reason = "too little that has a pitch";
  return {name,
          theory,
          [=] {
            const Waveform samples = make();
            return Scene{.output = {rate, {samples}}, .reference = {rate, {samples}}};
          },
          {expected}};
}

Control AtEdge(double hz, bool voiced) {
  constexpr int kFine = 100000;  // So that the period is known to a thousandth of a cent.
  return Copy(
      "a voice of " + std::to_string(hz) + " Hz", "Pitches from 60 to 1000 Hz count.", kFine,
      [hz] {
        Waveform samples = Sine(kFine, 0.2, hz, 0.3);
        for (int k = 2; k <= 5; ++k) samples = Sum(samples, Sine(kFine, 0.2, k * hz, 0.3 / k, k));
        return samples;
      },
      voiced);
}

// A sequence of 127 signs that has next to nothing in common with itself at any lag below 127: of a
// shift register with the polynomial x^7 + x^6 + 1 (S. W. Golomb, "Shift Register Sequences",
// 1967).
Waveform Signs(size_t count) {
  std::array<bool, 7> bits;
  bits.fill(true);
  Waveform samples(count);
  for (float& sample : samples) {
    sample = bits[6] ? 0.5F : -0.5F;
    const bool next = bits[6] != bits[5];
    for (size_t i = 6; i > 0; --i) bits[i] = bits[i - 1];
    bits[0] = next;
  }
  return samples;
}

// At 20320 Hz a window is 508 samples, four of the sequence's 127, and a step 203. The tenth block
// starts at 1827, and what is missing of the last 635 samples that it looks at counts.
Control EndsAt(size_t count, bool voiced) {
  constexpr int kSigned = 20320;
  return Copy(
      "signs that repeat themselves after 127 samples, " + std::to_string(count) +
          " of them, then silence",
      "Ten blocks count where the tenth has less than a tenth of the mean difference one "
      "period later, summed by the definition: 0.0990 with 97 samples missing, 0.1001 "
      "with 98.",
      kSigned,
      [count] {
        Waveform samples = Signs(count);
        samples.resize(count + 4000);
        return samples;
      },
      voiced);
}

constexpr int kRate = 16000;

// One sample each `period` samples, of these amplitudes in turn: from one whole turn to the next
// the difference is 0, and it is the energy of both where no two pulses meet.
Waveform Pulses(size_t count, size_t period, const std::array<double, 2>& amplitudes) {
  Waveform samples(count);
  for (size_t i = 0; i * period < count; ++i) {
    samples[i * period] = static_cast<float>(amplitudes[i % 2]);
  }
  return samples;
}

Waveform Pulses(size_t count, size_t period, double amplitude = 0.5) {
  return Pulses(count, period, {amplitude, amplitude});
}

Control Pitched(const std::string& name, const std::string& theory, int rate,
                const std::function<Waveform()>& reference, const std::function<Waveform()>& output,
                double cents) {
  return {name,
          theory,
          [=] {
            return Scene{.output = {rate, {output()}}, .reference = {rate, {reference()}}};
          },
          {{"pitch_cents", cents, 0.05}}};
}

// A copy of what either has a pitch or none, for this reason.
Control Copied(const std::string& name, const std::string& theory, int rate,
               const std::function<Waveform()>& make, const std::string& reason = {}) {
  Control control = Pitched(name, theory, rate, make, make, 0);
  control.expected = {{.measure = "pitch_cents", .value = 0, .tolerance = 1e-6, .reason = reason}};
  return control;
}

// Of pulses that are stronger and weaker in turn, at the period from one to the next.
Control Alternating(double normalised, bool counts) {
  Control control = Pitched(
      "pulses 80 samples apart, stronger and weaker, of the difference " +
          std::to_string(normalised),
      "The window has five of 1 and r in turn, in any place: the difference is 5 (1 + r^2) at the "
      "lags from 1 to 79 and 5 (1 - r)^2 at 80. With q the ratio of both, over their mean it is "
      "80 q / (79 + q), below a tenth or not; if not, 160 samples are the period. At 81 there is "
      "one "
      "stronger pulse more, which moves the parabola by a 20th of a sample at most, 1.1 cents.",
      kRate, [] { return Pulses(kRate / 2, 160); },
      [=] {
        const double q = 79 * normalised / (80 - normalised);
        const double r = (1 - std::sqrt(1 - (1 - q) * (1 - q))) / (1 - q);
        return Pulses(kRate / 2, 80, {1, r});
      },
      counts ? 1200 : 0);
  control.expected.front().tolerance = 1.1;
  return control;
}

// Pulses of which no more than ten blocks fit, at the end.
Control LastBlocks(size_t missing) {
  return Copied(
      "noise, then pulses to the end, ten blocks less " + std::to_string(missing) + " samples",
      "At 11025 Hz a block is a window of 275 samples, the longest period of 183 and two more, and "
      "one starts each 110 samples. It takes ten.",
      11025,
      [=] {
        Waveform samples = WhiteNoise(size_t{20} * 110, 0.25, 65);
        Append(samples, Pulses(9 * 110 + 275 + 183 + 2 - missing, 100));
        return samples;
      },
      missing == 0 ? "" : "too little that has a pitch");
}

// Eight pulses a window, after five of 5: of the energy 125.
Control Softer(double energy, bool counts) {
  return Pitched(
      "pulses each 80 samples, then of the energy " + std::to_string(energy) + " of them each 50",
      "What is no more than 30 dB softer than the loudest block counts, and lasts longer.", kRate,
      [] { return Pulses(kRate, 80); },
      [=] {
        Waveform samples = Pulses(kRate / 4, 80, 5);
        Append(samples, Pulses(kRate * 3 / 4, 50, std::sqrt(energy * 125 / 8)));
        return samples;
      },
      counts ? 1200 * std::log2(80.0 / 50) : 0);
}

Control Brief(size_t samples, const std::string& reason) {
  return Copied(
      "pulses for " + std::to_string(samples) + " samples at 16 kHz",
      "It takes a fifth of a second.", kRate, [=] { return Pulses(samples, 80); }, reason);
}

}  // namespace

std::vector<Control> PitchControls() {
  return {AtEdge(60.003, true),
          AtEdge(59.997, false),
          AtEdge(999.9, true),
          AtEdge(1000.1, false),
          EndsAt(2365, true),
          EndsAt(2364, false),
          Alternating(0.0995, true),
          Alternating(0.1005, false),
          Alternating(0.15, false),
          LastBlocks(0),
          LastBlocks(1),
          Softer(0.001, true),
          Softer(0.000995, false),
          Brief(3200, ""),
          Brief(3199, audio_measures::kTooShort),
          Copied("pulses each 80 samples, of which one comes right after the window",
                 "Windows of 400 samples that start each 160 have five of them, and none of the "
                 "next block's.",
                 kRate, [] { return Pulses(kRate / 2, 80); })};
}

}  // namespace host
