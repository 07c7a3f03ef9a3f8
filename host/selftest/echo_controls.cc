#include <cmath>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = 320;     // 20 ms
constexpr size_t kEchoLater = 80;  // Waveform.

// White noise of this RMS in each 20 ms, or silence.
Waveform Talk(double rms, double seconds, uint64_t seed) {
  Waveform samples = WhiteNoise(Frames(kRate, seconds), 1, seed);
  for (size_t start = 0; start < samples.size(); start += kBlock) {
    const auto block = std::span(samples).subspan(start, kBlock);
    const double gain = rms * std::sqrt(kBlock / Energy(block));
    for (float& sample : block) sample = static_cast<float>(sample * gain);
  }
  return samples;
}

Waveform Later(std::span<const float> samples, size_t count) {
  Waveform later(count);
  Append(later, samples.first(samples.size() - count));
  return later;
}

// The least that is defined, of an echo that is not later, so that all blocks are whole.
Control Shortest(double rms, Expected expected) {
  return {"0.2 s of an echo 26 dB down, the far end at " + std::to_string(rms),
          "Ten blocks of 20 ms are one window: its gain, from the start.",
          [rms] {
            const Waveform far = Talk(rms, 0.2, 88);
            return Scene{.output = {kRate, {Scaled(far, 0.025)}},
                         .far = {kRate, {far}},
                         .input = {kRate, {Scaled(far, 0.5)}}};
          },
          {std::move(expected)}};
}

// The gains of a canceller, one after the other.
struct Passage {
  double seconds = 0;
  double gain = 0;
};

Waveform Cancelled(std::span<const float> echo, const std::vector<Passage>& passages) {
  Waveform output(echo.begin(), echo.end());
  size_t place = kEchoLater;
  for (const Passage& each : passages) {
    const size_t end = std::min(output.size(), place + Frames(kRate, each.seconds));
    for (; place < end; ++place) output[place] = static_cast<float>(output[place] * each.gain);
  }
  return output;
}

Control Converging(const std::string& name, const std::vector<Passage>& passages, Expected erle,
                   Expected convergence) {
  return {name,
          "Each 20 ms of echo have one energy, and the canceller one gain for each passage. A "
          "window of 0.2 s reaches 20 dB when the last block at -10 dB, which alone is a tenth of "
          "its energy, has left it; the median is the gain of more than half of the windows.",
          [passages] {
            const Waveform far = Talk(0.1, 4, 81);
            const Waveform echo = Later(Scaled(far, 0.5), kEchoLater);
            return Scene{.output = {kRate, {Cancelled(echo, passages)}},
                         .far = {kRate, {far}},
                         .input = {kRate, {echo}}};
          },
          {std::move(erle), std::move(convergence)}};
}

Control WithNear() {
  return {"an echo 26 dB down, with speech at the microphone most of the time",
          "While the near end talks, 0.2 s after it and 60 ms before it nothing counts, nor while "
          "the far end is silent: what is left is a gain of 0.05 in the first second. Of either of "
          "the others there is more than of that, so that it would be the median.",
          [] {
            Waveform far = Talk(0.1, 6, 82);
            std::fill(far.begin() + 3 * kRate, far.end(), 0.0F);
            Waveform near(far.size());
            const Waveform said = Talk(0.1, 1.9, 83);
            std::copy(said.begin(), said.end(), near.begin() + kRate + kEchoLater);
            const Waveform echo = Later(Scaled(far, 0.5), kEchoLater);
            Waveform input = Sum(echo, near);
            Waveform output = Sum(Scaled(echo, 0.05), near);
            // What talks on in the room when the far end is silent is no echo.
            const Waveform room = Talk(0.01, 2.6, 84);
            const size_t start = Frames(kRate, 3.3);
            for (size_t i = 0; i < room.size(); ++i) {
              input[start + i] += room[i];
              output[start + i] += room[i];
            }
            return Scene{.output = {kRate, {output}},
                         .far = {kRate, {far}},
                         .near = {kRate, {near}},
                         .input = {kRate, {input}}};
          },
          {{"erle", -20 * std::log10(0.05), 0.05}, {"convergence", 0, 0.001}}};
}

// Near end from 0 to 2 s, far end from 1 to 3 s, residual echo of `below` dB from 1 to 2.2 s.
Control DoubleTalk(double below, double gain, size_t later) {
  const double longer = 10 * std::log10(1.2);
  return {"double talk with an echo " + std::to_string(below) + " dB below, gain " +
              std::to_string(gain) + ", " + std::to_string(later) + " samples later",
          "Both talk for 1 s and the 0.2 s of hang-over after the near end; the echo goes on for "
          "those, so that it has 1.2 times the energy. It is orthogonal to the near end in each 20 "
          "ms. Before and after the echo is another one, which does not count; nor does the gain.",
          [=] {
            Waveform near = Talk(0.1, 4, 85);
            std::fill(near.begin() + 2 * kRate, near.end(), 0.0F);
            Waveform far = Talk(0.1, 4, 86);
            std::fill(far.begin(), far.begin() + kRate, 0.0F);
            std::fill(far.begin() + 3 * kRate, far.end(), 0.0F);
            const Waveform whole = Talk(0.1, 4, 85);
            Waveform rest = NoiseBelow(whole, below, kBlock, 87);
            std::fill(rest.begin(), rest.begin() + kRate, 0.0F);
            for (size_t i = Frames(kRate, 2.2); i < rest.size(); ++i) rest[i] *= 2;
            return Scene{.output = {kRate, {Later(Scaled(Sum(near, rest), gain), later)}},
                         .far = {kRate, {far}},
                         .near = {kRate, {near}}};
          },
          {{"near_sdr", below - longer, 0.02}}};
}

Control ShortDoubleTalk() {
  return {"0.2 s of double talk with an echo 12 dB below",
          "Both talk throughout; the echo is orthogonal to the near end in each 20 ms.",
          [] {
            constexpr int rate = 48000;
            const Waveform near = WhiteNoise(9600, 0.1, 89);
            return Scene{.output = {rate, {Sum(near, NoiseBelow(near, 12, 960, 90))}},
                         .far = {rate, {WhiteNoise(9600, 0.1, 92)}},
                         .near = {rate, {near}}};
          },
          {{"near_sdr", 12, 0.02}}};
}

// The far end is as loud as speech or too soft for it, and so is the near end.
Control TooSoft(double near, double far) {
  return {"a near end at RMS " + std::to_string(near) + ", a far end at " + std::to_string(far),
          "Speech takes a level: without it nobody talks.",
          [=] {
            const Waveform said = Talk(near, 1, 93);
            return Scene{.output = {kRate, {said}},
                         .far = {kRate, {Talk(far, 1, 94)}},
                         .near = {kRate, {said}}};
          },
          {{.measure = "near_sdr", .reason = "nothing as loud as speech"}}};
}

// Both talk for a second, then for three seconds the near end alone.
Control LaterOutside(double inside, double outside, double least) {
  return {"double talk " + std::to_string(inside) + " samples late, then " +
              std::to_string(outside) + " without the far end",
          "Whatever the delay of the whole is, in double talk the near end is as it was, to the "
          "interpolation.",
          [=] {
            const TimedNoise noise(4 * kRate, 0.1, 95);
            Waveform output = noise.At(-inside, 1, Frames(kRate, 1.4));
            Append(output,
                   noise.At(static_cast<double>(output.size()) - outside, 1, Frames(kRate, 2.6)));
            Waveform far = Talk(0.1, 4, 96);
            std::fill(far.begin() + kRate, far.end(), 0.0F);
            return Scene{.output = {kRate, {output}},
                         .far = {kRate, {far}},
                         .near = {kRate, {noise.At(0, 1, 4 * kRate)}}};
          },
          {{"near_sdr", 120, 120 - least}}};
}

}  // namespace

std::vector<Control> EchoControls() {
  const double third = 20;
  return {Converging("an echo 26 dB down throughout", {{4, 0.05}},
                     {"erle", -20 * std::log10(0.05), 0.01}, {"convergence", 0, 0.001}),
          Converging("an echo 10 dB down for 1 s, then 30 dB",
                     {{1, std::pow(10, -0.5)}, {3, std::pow(10, -1.5)}}, {"erle", 30, 0.01},
                     {"convergence", 1, 0.001}),
          Converging("an echo 10 dB down for 2.6 s, then 30 dB",
                     {{2.6, std::pow(10, -0.5)}, {3, std::pow(10, -1.5)}}, {"erle", 10, 0.01},
                     {"convergence", 2.6, 0.001}),
          Converging("an echo 10 dB down for 1 s, but 60 dB for 0.1 s of it, then 30 dB",
                     {{0.5, std::pow(10, -0.5)},
                      {0.1, 1e-3},
                      {0.4, std::pow(10, -0.5)},
                      {3, std::pow(10, -1.5)}},
                     {"erle", 30, 0.01}, {"convergence", 1, 0.001}),
          Converging("an echo 19.9 dB down throughout", {{4, std::pow(10, -0.995)}},
                     {"erle", third - 0.1, 0.01},
                     {"convergence", 0, 0, "the echo is never 20 dB down"}),
          Converging("an echo 20.1 dB down throughout", {{4, std::pow(10, -1.005)}},
                     {"erle", third + 0.1, 0.01}, {"convergence", 0, 0.001}),
          WithNear(),
          Shortest(0.1, {"erle", -20 * std::log10(0.05), 0.01}),
          Shortest(0.002, {"erle", -20 * std::log10(0.05), 0.01}),
          Shortest(0.1, {"convergence", 0, 0.001}),
          ShortDoubleTalk(),
          DoubleTalk(15, 1, 0),
          DoubleTalk(5, -0.3, 24),
          DoubleTalk(30, 2, 0),
          TooSoft(1e-5, 0.1),
          TooSoft(0.1, 1e-5),
          LaterOutside(20.4, 20.4, 60),
          LaterOutside(20, 20.3, 110)};
}

}  // namespace host
