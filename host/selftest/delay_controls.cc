#include <algorithm>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 8000;
constexpr size_t kFrames = 16000;

Scene Pair(Waveform reference, Waveform output, double searchSeconds, int rate = kRate) {
  return {.output = {rate, {std::move(output)}},
          .reference = {rate, {std::move(reference)}},
          .searchSeconds = searchSeconds};
}

Waveform Cut(const Waveform& samples, std::ptrdiff_t first, size_t count) {
  const auto from = samples.begin() + first;
  return {from, from + static_cast<std::ptrdiff_t>(count)};
}

std::vector<Expected> Nowhere(const std::string& reason) {
  return {{.measure = "delay", .reason = reason},
          {.measure = "gain", .reason = reason},
          {.measure = "polarity", .reason = reason},
          {.measure = "snr", .reason = reason}};
}

std::vector<Expected> Found(double later, double gain = 0) {
  return {{"delay", later / kRate, 0.002 / kRate},
          {"gain", gain, 0.002},
          {"polarity", 1, 1e-9},
          {"snr", 120, 1e-6}};
}

// The output is this part of the noise, and the reference that from `first` on.
Control Parts(const std::string& name, const std::string& theory, std::ptrdiff_t later,
              size_t reference, size_t output, double searchSeconds,
              std::vector<Expected> expected) {
  return {name, theory,
          [=] {
            const std::ptrdiff_t lead = std::abs(later);
            const Waveform noise =
                WhiteNoise(std::max(reference, output) + 2 * static_cast<size_t>(lead), 0.1, 51);
            return Pair(Cut(noise, lead, reference), Cut(noise, lead - later, output),
                        searchSeconds);
          },
          std::move(expected)};
}

// 10 ms are 80 samples to either side.
Control AtEdge(std::ptrdiff_t later) {
  const bool found = std::abs(later) <= 80;
  return Parts("a delay of " + std::to_string(later) + " samples, looked for within 80",
               "The ends of the search belong to it; white noise has nothing in common with itself "
               "a sample beside them.",
               later, kFrames, kFrames, 0.01,
               found ? Found(static_cast<double>(later)) : Nowhere("no clear delay"));
}

// 4096 samples are the least that a delay is taken from.
Control Short(size_t common, std::ptrdiff_t later) {
  const size_t frames = common + static_cast<size_t>(std::abs(later));
  return Parts(
      std::to_string(common) + " samples in common, " + std::to_string(later) + " samples later",
      "4096 samples that both have are the least.", later, frames, frames, 0.01,
      common >= 4096 ? Found(static_cast<double>(later)) : Nowhere("too short"));
}

Control Excerpt(bool ofReference) {
  const std::ptrdiff_t later = ofReference ? 3000 : -3000;
  return Parts(std::string("9000 samples that begin 3000 samples after the ") +
                   (ofReference ? "output" : "reference"),
               "All of the shorter one is in the longer one, that much from its start.", later,
               ofReference ? 9000 : 20000, ofReference ? 20000 : 9000, 0.5,
               Found(static_cast<double>(later)));
}

// The shorter signal is 8000 samples, half of which is 4000.
Control HalfOfShorter(std::ptrdiff_t later) {
  const bool found = std::abs(later) <= 4000;
  return Parts("a delay of " + std::to_string(later) + " of 8000 samples, looked for in 1 s",
               "No more than half of the shorter signal is looked through.", later, 8000, 12000, 1,
               found ? Found(static_cast<double>(later)) : Nowhere("no clear delay"));
}

// A sine of whole periods of 80 samples in all that is looked at.
Control OfTone() {
  return {"a sine of 100 Hz, 22.3 samples late",
          "17.7 samples earlier it is as high upside down and overlaps by 0.05 % more; the right "
          "way up "
          "counts. A window of Hann leaves a millionth of the tone's mirror below 0 Hz.",
          [] {
            const double turn = 2 * std::numbers::pi / 80;
            return Pair(Sine(kRate, 2, 100, 0.3), Sine(kRate, 2, 100, 0.3, -22.3 * turn), 0.005);
          },
          {{"delay", 22.3 / kRate, 0.01 / kRate}, {"gain", 0, 0.002}, {"polarity", 1, 1e-9}}};
}

Control OfSoftTone() {
  return {"a sine of 100 Hz of amplitude 1e-6, 5 samples late and upside down",
          "The right way up it is 35 samples early, beyond what is looked through.",
          [] {
            const double turn = 2 * std::numbers::pi / 80;
            return Pair(Sine(kRate, 2, 100, 1e-6), Sine(kRate, 2, 100, -1e-6, -5 * turn), 0.002);
          },
          {{"delay", 5.0 / kRate, 0.01 / kRate}, {"gain", 0, 0.002}, {"polarity", -1, 1e-9}}};
}

// Of opposite signs, as the product of both constants is.
Control OfToneBesideConstants() {
  return {"a sine of 100 Hz above 0.013, 22 samples late below -0.013",
          "Half a period apart it is the same upside down. The product of the constants, 0.4 % of "
          "the sine's, is no likeness of that sign; the ends leave less than a tenth of it.",
          [] {
            const double turn = 2 * std::numbers::pi / 80;
            Waveform reference = Sine(kRate, 2, 100, 0.3);
            Waveform output = Sine(kRate, 2, 100, 0.3, -22 * turn);
            for (float& sample : reference) sample += 0.013F;
            for (float& sample : output) sample -= 0.013F;
            return Pair(reference, output, 0.005);
          },
          {{"delay", 22.0 / kRate, 0.01 / kRate}}};
}

// Noise of their own in both, 10 dB below a sine with a period of 8 samples.
Control OfToneInNoise() {
  return {"a sine of 1 kHz, 1.3 samples late, 10 dB above noise",
          "Noise in both has nothing in common; the sine's phase is known to sqrt(0.2 / 16000) of "
          "a radian, 0.0045 samples, of which the tolerance is five times. What both have in "
          "common is 1 / 1.1 of the reference.",
          [] {
            const Waveform sine = Sine(kRate, 2, 1000, 0.1);
            const double rms = 0.1 * std::sqrt(0.05);
            return Pair(Sum(sine, WhiteNoise(kFrames, rms, 52)),
                        Sum(Sine(kRate, 2, 1000, 0.1, -1.3 * 2 * std::numbers::pi / 8),
                            WhiteNoise(kFrames, rms, 53)),
                        0.0002);
          },
          {{"delay", 1.3 / kRate, 0.023 / kRate},
           {"gain", -20 * std::log10(1.1), 0.15},
           {"polarity", 1, 1e-9}}};
}

// A search of 80 samples, and a fit of blocks of 4096.
Control AtEnd() {
  return {"silence, and 1000 samples of noise at the end, 7 samples late",
          "Where in the signal there is anything does not matter.",
          [] {
            const Waveform noise = WhiteNoise(1000, 0.1, 59);
            Waveform reference(7000);
            Append(reference, noise);
            Waveform output(7007);
            Append(output, noise);
            return Pair(reference, output, 0.01);
          },
          Found(7)};
}

Control InNoise(double later, double snr) {
  const double louder = std::pow(10, -snr / 20);
  return {"noise " + std::to_string(later) + " samples late at an SNR of " + std::to_string(snr) +
              " dB",
          "The delay is known to the noise over the signal and sqrt(n), over the RMS of what a "
          "sample turns, 0.8 pi / sqrt(3): at 0 dB 0.0054 samples of n = 16000; the gain to 8.7 / "
          "sqrt(n) dB, and the ratio of both to as much. The tolerance is five times that.",
          [later, snr] {
            const TimedNoise noise(kFrames + 400, 0.1, 54);
            const Waveform moved = noise.At(200 - later, 1, kFrames);
            return Pair(noise.At(200, 1, kFrames), Sum(moved, NoiseBelow(moved, snr, kFrames, 55)),
                        0.1);
          },
          {{"delay", later / kRate, 0.027 * louder / kRate},
           {"gain", 0, 0.35 * louder},
           {"snr", snr, 0.35 * louder}}};
}

Control Strangers() {
  return {"two noises that have nothing to do with each other", "There is no delay between them.",
          [] { return Pair(WhiteNoise(kFrames, 0.1, 56), WhiteNoise(kFrames, 0.1, 57), 0.1); },
          Nowhere("no clear delay")};
}

// Pieces of 2 s, each a sample later than the one before, and the fourth 20 samples late.
Control Stairs() {
  return {"seven times 2 s, each a sample later, the fourth 20 more",
          "A sample in 2 s is 62.5 ppm, and three samples are the delay in the middle. The fourth "
          "piece is not of the line and 23 samples later than the first.",
          [] {
            constexpr std::ptrdiff_t kPiece = 16000;
            const Waveform noise = WhiteNoise(7 * kPiece + 100, 0.1, 58);
            Waveform output;
            for (std::ptrdiff_t i = 0; i < 7; ++i) {
              Append(output, Cut(noise, 50 + i * kPiece - i - (i == 3 ? 20 : 0), kPiece));
            }
            return Pair(Cut(noise, 50, 7 * kPiece), output, 0.1);
          },
          {{"drift", 62.5, 1},
           {"delay", 3.0 / kRate, 0.1 / kRate},
           {"delay_track", 23.0 / kRate, 0.2 / kRate}}};
}

}  // namespace

std::vector<Control> DelayControls() {
  return {AtEdge(80),
          AtEdge(-80),
          AtEdge(81),
          AtEdge(-81),
          Short(4096, 5),
          Short(4096, -5),
          Short(4095, 5),
          Short(4095, -5),
          Excerpt(true),
          Excerpt(false),
          HalfOfShorter(4000),
          HalfOfShorter(4001),
          OfTone(),
          OfSoftTone(),
          OfToneBesideConstants(),
          OfToneInNoise(),
          AtEnd(),
          InNoise(0.4, 0),
          InNoise(-9.5, -10),
          Strangers(),
          Stairs()};
}

}  // namespace host
