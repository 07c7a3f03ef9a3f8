#include <cmath>
#include <string>
#include <utility>

#include "selftest/control.h"
#include "selftest/weighting_controls.h"

namespace host {

namespace {

constexpr int kRate = 48000;

using Passages = std::vector<std::pair<double, double>>;  // dBFS of the crest, and seconds.

Waveform Tones(const Passages& passages) {
  Waveform samples;
  for (const auto& [level, seconds] : passages) {
    Append(samples, Sine(kRate, seconds, 1000, std::pow(10, level / 20)));
  }
  return samples;
}

Control Programme(const std::string& name, const std::string& theory, const Passages& passages,
                  std::vector<Expected> expected) {
  return {name, theory,
          [passages] {
            const Waveform tones = Tones(passages);
            return Scene{.output = {kRate, {tones, tones}}};
          },
          std::move(expected)};
}

// A case of EBU Tech 3341.
Control Loud(const std::string& name, const Passages& passages, double loudness) {
  return Programme("EBU Tech 3341, " + name,
                   "A stereo sine of 1 kHz whose crests stand at -23 dBFS has -23 LUFS; what lies "
                   "below the gates does not count. The document allows 0.1 LU.",
                   passages, {{"loudness", loudness, 0.1}});
}

// A case of EBU Tech 3342.
Control Wide(const std::string& name, const Passages& passages, double range) {
  return Programme("EBU Tech 3342, " + name,
                   "The range is the distance of the levels between which the 10th and the 95th "
                   "percentile lie. The document allows 1 LU.",
                   passages, {{"loudness_range", range, 1}});
}

Control FiveChannels() {
  return {"EBU Tech 3341, case 6",
          "Five channels, the surrounds weighted by 1.41: -28 dBFS left and right, -24 in the "
          "centre, -30 around: -23 LUFS. The document allows 0.1 LU.",
          [] {
            Scene scene = {.output = {kRate, {}}};
            for (const double level : {-28.0, -28.0, -24.0, -30.0, -30.0}) {
              scene.output.channels.push_back(Tones({{level, 20}}));
            }
            return scene;
          },
          {{"loudness", -23, 0.1}}};
}

constexpr int kSlow = 8000;  // Hz

// 1 kHz at this loudness for each tenth of a second.
Waveform Tenths(const std::vector<double>& loudness) {
  const Waveform tenth = Sine(kSlow, 0.1, 1000, 1);
  const double full = LoudnessOfSine(1000, kSlow, 1);
  Waveform samples;
  for (const double each : loudness) {
    Append(samples, Scaled(tenth, std::pow(10, (each - full) / 20)));
  }
  return samples;
}

Control Short(const std::string& name, const std::string& theory,
              const std::vector<double>& loudness, std::vector<Expected> expected) {
  return {name, theory,
          [loudness] {
            return Scene{.output = {kSlow, {Tenths(loudness)}}};
          },
          std::move(expected)};
}

constexpr double kNothing = -200;  // LUFS

// Each second softer or louder by a quarter of a decibel.
Control Staircase(int windows, int lower, int upper) {
  return {"a staircase of " + std::to_string(windows) + " windows of 3 s",
          "One window is a step of 0.25 dB above the one before, as its three seconds are: the "
          "range is that from rank 0.1 (n - 1) to 0.95 (n - 1), each the nearest whole one.",
          [windows] {
            std::vector<double> loudness;
            for (int i = 0; i < (windows + 2) * 10; ++i) {
              const int second = i / 10;
              loudness.push_back(-20 - 0.25 * second);
            }
            return Scene{.output = {kSlow, {Tenths(loudness)}}};
          },
          {{"loudness_range", 0.25 * (upper - lower), 0.01}}};
}

std::vector<Control> Windows() {
  const double louder = 10 * std::log10(3.0);
  std::vector<double> seconds(40, kNothing);
  std::fill_n(seconds.begin(), 10, -20);
  std::fill_n(seconds.begin() + 30, 10, -20 + louder);
  std::vector<double> once(40, kNothing);
  std::fill_n(once.begin() + 10, 4, -62);
  return {
      Short("a soft and a loud tenth of a second with silence between",
            "Two blocks of 0.4 s, one tenth after the other, see one of both each: a quarter "
            "of 1 and of 3, in the mean a half.",
            {-20, kNothing, kNothing, kNothing, -20 + louder},
            {{"loudness", -20 + 10 * std::log10(0.5), 0.02}}),
      Short("a soft and a loud second with silence between",
            "Two blocks of 3 s, one second after the other, see one of both each: three times "
            "the power.",
            seconds, {{"loudness_range", louder, 0.02}}),
      Short("0.4 s at -62 LUFS in 4 s of silence",
            "One block of 0.4 s sees all of it; of 3 s it is -70.75 LUFS, below the gate, so "
            "that there is one loudness and no range. The others have -63.2, -65 and -68 LUFS.",
            once,
            {{"loudness", -62 + 10 * std::log10((1 + 2 * (0.75 + 0.5 + 0.25)) / 7), 0.02},
             {"loudness_range", 0, 1e-9}}),
      Short("0.4 s at -20 LUFS", "One block.", std::vector<double>(4, -20),
            {{"loudness", -20, 0.02}}),
      Short("3 s at -20 LUFS", "One block, which has no range.", std::vector<double>(30, -20),
            {{"loudness_range", 0, 1e-9}}),
      Short("2 s at -69.98 LUFS", "It is above the absolute gate.", std::vector<double>(20, -69.98),
            {{"loudness", -69.98, 0.01}}),
      Short("2 s at -70.02 LUFS", "It is below the absolute gate.", std::vector<double>(20, -70.02),
            {{.measure = "loudness", .reason = audio_measures::kBelowGate}})};
}

// What is so much louder or softer than the gate, for as long as what is loud.
Control AtGate(const std::string& gate, double share, double beside, bool passes) {
  // Both last equally long, and what lies across the border is half of both: the mean of all is
  // that of the two.
  const double least = share * beside / 2;
  const double power = least / (1 - least);
  const double soft = 10 * std::log10(power);
  Expected expected = {"loudness", passes ? -20 + 10 * std::log10((1 + power) / 2) : -20, 0.05};
  if (gate == "range") expected = {"loudness_range", passes ? -soft : 0, 0.01};
  return {"a tone at " + std::to_string(beside) + " of the gate of the " + gate,
          "The mean of as much at -20 LUFS and at x below it is half of both. The gate lies a "
          "tenth of that below it for the loudness and a hundredth for the range. What passes "
          "halves the mean, or is the softer end of the range; the other is that of the loud one "
          "alone, of which blocks across the border lack 0.03 dB.",
          [soft] {
            std::vector<double> loudness(200, -20);
            loudness.resize(400, -20 + soft);
            return Scene{.output = {kSlow, {Tenths(loudness)}}};
          },
          {std::move(expected)}};
}

}  // namespace

std::vector<Control> LoudnessControls() {
  std::vector<Control> controls = {
      Loud("case 1", {{-23, 20}}, -23),
      Loud("case 2", {{-33, 20}}, -33),
      Loud("case 3", {{-36, 10}, {-23, 60}, {-36, 10}}, -23),
      Loud("case 4", {{-72, 10}, {-36, 10}, {-23, 60}, {-36, 10}, {-72, 10}}, -23),
      Loud("case 5", {{-26, 20}, {-20, 20.1}, {-26, 20}}, -23),
      FiveChannels(),
      Wide("case 1", {{-20, 20}, {-30, 20}}, 10),
      Wide("case 2", {{-20, 20}, {-15, 20}}, 5),
      Wide("case 3", {{-40, 20}, {-20, 20}}, 20),
      Wide("case 4", {{-50, 20}, {-35, 20}, {-20, 20}, {-35, 20}, {-50, 20}}, 15),
      Programme("a minute below the absolute gate",
                "What is at -75 LUFS does not count, though it is less than 10 LU below the "
                "mean of all. Of the 99 blocks that count two, at the edge, are a quarter and a "
                "half below, 0.03 dB of the mean.",
                {{-66, 10}, {-75, 60}}, {{"loudness", -66, 0.1}}),
      Programme("two loud seconds in two minutes",
                "Of 120 blocks of 3 s four have something of them, fewer than the 5 % that lie "
                "above the 95th percentile: the range is that of the minutes.",
                {{-30, 60}, {-20, 30}, {-10, 2}, {-20, 30}}, {{"loudness_range", 10, 0.1}})};
  for (Control& each : Windows()) controls.push_back(std::move(each));
  controls.push_back(AtGate("loudness", 0.1, 1.01, true));
  controls.push_back(AtGate("loudness", 0.1, 0.99, false));
  controls.push_back(AtGate("range", 0.01, 1.01, true));
  controls.push_back(AtGate("range", 0.01, 0.99, false));
  controls.push_back(Staircase(55, 5, 51));
  controls.push_back(Staircase(47, 5, 44));
  return controls;
}

}  // namespace host
