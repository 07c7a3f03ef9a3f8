#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

Control Longer(size_t input, size_t output) {
  return {"an output of " + std::to_string(output) + " samples from " + std::to_string(input),
          "The ratio of both.",
          [=] {
            return Scene{.output = {16000, {Samples(output, 0.1F)}},
                         .input = {16000, {Samples(input, 0.1F)}}};
          },
          {{"length_factor", static_cast<double>(output) / static_cast<double>(input), 1e-9}}};
}

// A voice: harmonics that fall with their number.
Samples Voice(int rate, double seconds, double hz) {
  Samples samples(Frames(rate, seconds));
  for (int k = 1; k <= 5; ++k) samples = Sum(samples, Sine(rate, seconds, k * hz, 0.3 / k, k));
  return samples;
}

Control Higher(double hz, double cents, int rate) {
  return {"a voice of " + std::to_string(hz) + " Hz, " + std::to_string(cents) +
              " cents higher, at " + std::to_string(rate) + " Hz",
          "1200 log2 of the ratio of the frequencies that it was made of; the period between "
          "samples by a parabola is known to 2 cents.",
          [=] {
            return Scene{.output = {rate, {Voice(rate, 0.5, hz * std::exp2(cents / 1200))}},
                         .reference = {rate, {Voice(rate, 0.5, hz)}}};
          },
          {{"pitch_cents", cents, 2}}};
}

Control OtherTimbre() {
  return {"a sine and a tone with as much of its octave",
          "Both repeat themselves after one period of 220 Hz, the second nearly after half of it: "
          "0 cents.",
          [] {
            const Samples sine = Sine(16000, 0.5, 220, 0.3);
            return Scene{.output = {16000, {Sum(sine, Sine(16000, 0.5, 440, 0.3))}},
                         .reference = {16000, {sine}}};
          },
          {{"pitch_cents", 0, 2}}};
}

Control Clicking(double bpm, int rate) {
  return {"clicks at " + std::to_string(bpm) + " BPM and " + std::to_string(rate) + " Hz",
          "A click of 5 ms each 60 / BPM s; known over eight beats to a fraction of 10 ms: 0.3 %.",
          [=] {
            Samples samples(Frames(rate, 12));
            Random random(51);
            for (double t = 0.1; t < 11.9; t += 60 / bpm) {
              for (size_t i = 0; i < Frames(rate, 0.005); ++i) {
                samples[Frames(rate, t) + i] = static_cast<float>(0.3 * random.Normal());
              }
            }
            return Scene{.output = {rate, {samples}}};
          },
          {{"tempo", bpm, bpm * 0.003}}};
}

Control Beating(const std::string& name, const std::string& theory,
                const std::vector<double>& beats, const std::vector<double>& truth, double f) {
  return {
      name,
      theory,
      [=] {
        return Scene{.output = {16000, {Samples(16000, 0.1F)}}, .beats = beats, .trueBeats = truth};
      },
      {{"beat_f", f, 1e-9}}};
}

std::vector<Control> Beats() {
  return {
      Beating("beats that are all there", "Every beat is hit, none is too much: 1.",
              {5.5, 6, 6.5, 7}, {5.5, 6, 6.5, 7}, 1),
      Beating("beats beside by 69 and by 71 ms", "Two of four are within 70 ms: 2 * 2 / (4 + 4).",
              {5.569, 6.071, 6.431, 6.929}, {5.5, 6, 6.5, 7}, 0.5),
      Beating("a beat too much and two too few",
              "Of four true beats two are hit by three: 2 * 2 / (4 + 3).", {5.5, 6, 6.25},
              {5.5, 6, 6.5, 7}, 4.0 / 7),
      Beating("one beat between two", "One beat hits one of two alone: 2 * 1 / (2 + 1).", {6.05},
              {6, 6.1}, 2.0 / 3),
      Beating("wrong beats before 5 s", "The first 5 s count on neither side, from 5 s on all do.",
              {1, 2, 3, 4.99, 5.01, 6}, {0.5, 4.9, 5.01, 6}, 1)};
}

}  // namespace

std::vector<Control> TimeControls() {
  std::vector<Control> controls = {OtherTimbre(),
                                   Longer(16000, 16000),
                                   Longer(16000, 24000),
                                   Longer(12345, 4321),
                                   Higher(220, 0, 16000),
                                   Higher(220, 700, 16000),
                                   Higher(440, -1200, 48000),
                                   Higher(110.7, 33, 16000),
                                   Higher(130, 100, 8000),
                                   Clicking(120, 16000),
                                   Clicking(93, 16000),
                                   Clicking(150.5, 44100)};
  for (Control& each : Beats()) controls.push_back(std::move(each));
  return controls;
}

}  // namespace host
