#include <algorithm>
#include <cmath>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 16000;
constexpr size_t kFrames = 48000;
constexpr size_t kLead = 200;  // Waveform of the noise before the reference starts.

Scene Pair(Waveform reference, Waveform output, int rate = kRate) {
  return {.output = {rate, {std::move(output)}}, .reference = {rate, {std::move(reference)}}};
}

// The output is later by this many samples, at a gain.
Control Delayed(double later, double gain = 1) {
  const double decibels = 20 * std::log10(std::abs(gain));
  const bool whole = later == std::round(later);
  return {"delay of " + std::to_string(later) + " samples, gain " + std::to_string(gain),
          "Noise that is a function of time is read at places moved by the delay: that delay, to "
          "0.002 of a sample; no drift, and the gain that it was given, to 0.002 dB.",
          [=] {
            const TimedNoise noise(kFrames + 400, 0.1, 11);
            return Pair(noise.At(kLead, 1, kFrames),
                        Scaled(noise.At(kLead - later, 1, kFrames), gain));
          },
          {{"delay", later / kRate, 0.002 / kRate},
           {"gain", decibels, 0.002},
           {"polarity", gain < 0 ? -1.0 : 1.0, 1e-9},
           {"snr", whole ? 120.0 : 100.0, whole ? 1e-6 : 20.0}}};
}

Control Drifting(double ppm) {
  const double seconds = 10;
  return {
      "drift of " + std::to_string(ppm) + " ppm over 10 s",
      "The output is read in steps that are shorter by the drift: it is as much longer, to 0.5 "
      "ppm. The delays of the five pieces of 2 s, whose middles lie 8 s apart, differ by 8 s of "
      "drift; in the middle of what both have it is later by 5 s of drift, less what is beyond the "
      "output's end. What interpolation leaves is 100 dB below.",
      [=] {
        const auto frames = static_cast<size_t>(seconds * kRate);
        const TimedNoise noise(frames + 400, 0.1, 12);
        return Pair(noise.At(kLead, 1, frames), noise.At(kLead, 1 / (1 + ppm * 1e-6), frames));
      },
      {{"drift", ppm, 0.5},
       {"delay_track", 8 * std::abs(ppm) * 1e-6, 2e-6},
       {"delay", 5 * ppm * 1e-6 / (1 + ppm * 1e-6), 2e-6},
       {"gain", 0, 0.01},
       {"polarity", 1, 1e-9},
       {"snr", 100, 20}}};
}

// A drift beside which one piece lies elsewhere.
Control DriftingWithAStray() {
  constexpr int kLowRate = 8000;
  constexpr double kDrift = 1e-3;
  constexpr double kAway = 35;  // Waveform.
  return {"drift of 1000 ppm over 14 s, 2 s of them 35 samples late",
          "A piece that lies elsewhere is not of the line, which is as steep as without it, to 0.5 "
          "ppm. It is the sixth of seven, five pieces of drift and 35 samples later than the "
          "first.",
          [] {
            const size_t piece = 2 * kLowRate;
            const TimedNoise noise(7 * piece + 400, 0.1, 15);
            const double step = 1 / (1 + kDrift);
            Waveform output = noise.At(kLead, step, 7 * piece);
            const auto start = static_cast<double>(5 * piece) - kAway;
            const Waveform stray = noise.At(kLead + start * step, step, piece);
            std::ranges::copy(stray, output.begin() + static_cast<std::ptrdiff_t>(5 * piece));
            return Pair(noise.At(kLead, 1, 7 * piece), output, kLowRate);
          },
          {{"drift", 1e6 * kDrift, 0.5},
           {"delay_track", 10 * kDrift + kAway / kLowRate, 0.03 / kLowRate},
           {"polarity", 1, 1e-9}}};
}

Control Jumping() {
  return {"a jump by 16 samples",
          "Half of it lies at 0, half 16 samples later: pieces of 2 s are 1 ms apart.",
          [] {
            const size_t half = 64000;
            const Waveform reference = WhiteNoise(2 * half, 0.1, 13);
            Waveform output(reference.begin(), reference.begin() + half);
            Append(output, std::span(reference).subspan(half - 16, half));
            return Pair(reference, output);
          },
          {{"delay_track", 16.0 / kRate, 0.1 / kRate}}};
}

Control Channels() {
  return {"a stereo output against one reference",
          "Left at half the gain and 3 samples late, right upside down and 5 samples late: each "
          "its own, and their mean.",
          [] {
            const Waveform noise = WhiteNoise(16100, 0.1, 14);
            const auto at = [&](size_t first) {
              return Waveform(noise.begin() + static_cast<std::ptrdiff_t>(first),
                              noise.begin() + static_cast<std::ptrdiff_t>(first) + 16000);
            };
            return Scene{.output = {kRate, {Scaled(at(47), 0.5), Scaled(at(45), -1)}},
                         .reference = {kRate, {at(50)}}};
          },
          {{"delay", 3.0 / kRate, 1e-3 / kRate, "", 0},
           {"delay", 5.0 / kRate, 1e-3 / kRate, "", 1},
           {"polarity", 1, 1e-9, "", 0},
           {"polarity", -1, 1e-9, "", 1},
           {"gain", -20 * std::log10(2.0), 0.01, "", 0},
           {"gain", 0, 0.01, "", 1}}};
}

}  // namespace

std::vector<Control> AlignmentControls() {
  std::vector<Control> controls;
  for (const double later : {0.0, 1.0, -1.0, 37.0, -150.0, 0.5, -0.5, 0.25, 7.3, -3.7}) {
    controls.push_back(Delayed(later));
  }
  controls.push_back(Delayed(0, -1));
  controls.push_back(Delayed(0, 0.5));
  controls.push_back(Delayed(0, 1.5309));
  controls.push_back(Delayed(12.5, -0.25));
  controls.push_back(Drifting(50));
  controls.push_back(Drifting(-50));
  controls.push_back(Drifting(1000));
  controls.push_back(DriftingWithAStray());
  controls.push_back(Jumping());
  controls.push_back(Channels());
  return controls;
}

}  // namespace host
