#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 16000;
constexpr double kStep = 0.01;  // s

// Clicks after so many steps.
Scene Clicking(const std::vector<double>& steps, double seconds) {
  Waveform samples(Frames(kRate, seconds));
  for (const double step : steps) samples[Frames(kRate, step * kStep)] = 0.5F;
  return {.output = {kRate, {std::move(samples)}}};
}

// Beats of half a second, by so many steps shorter and longer in turn.
Control Limping(double off, double bpm) {
  return {"beats shorter and longer by " + std::to_string(off) + " steps in turn",
          "Smoothed four times a click is a bell, whose autocorrelation has the variance 5.1: half "
          "a second repeats itself by exp(-off^2 / 10.2), of which its mean of 0.11 is taken off, "
          "and a whole second by 1, which counts exp(-1 / 2) = 0.61. The former is 0.63 for 2 "
          "steps, 0.57 for 2.2.",
          [off] {
            std::vector<double> steps;
            double step = 10;
            for (int i = 0; step < 1990; ++i) {
              steps.push_back(step);
              step += 50 + (i % 2 == 0 ? -off : off);
            }
            return Clicking(steps, 20);
          },
          {{"tempo", bpm, 0.1}}};
}

Control TwoTempos() {
  return {"beats of 50 steps, then of 50.5",
          "Eight beats last 400 steps or 404, whose bells make one in the middle; 16 would be two.",
          [] {
            std::vector<double> steps;
            for (double step = 10; step < 3390; step += step < 1700 ? 50 : 50.5) {
              steps.push_back(step);
            }
            return Clicking(steps, 34);
          },
          {{"tempo", 6000 / 50.25, 0.1}}};
}

Control Bars() {
  return {"bars of eight beats of half a step too much each, but the last",
          "Eight beats are 400 steps in all of them; two and four are longer in most.",
          [] {
            std::vector<double> steps;
            for (int i = 0; i < 64; ++i) steps.push_back(10 + 50 * i + 0.5 * (i % 8));
            return Clicking(steps, 33);
          },
          {{"tempo", 120, 0.05}}};
}

// Clicks with these many steps between each and the next.
Control Intervals(const std::string& name, const std::string& theory,
                  const std::vector<double>& intervals, double seconds, Expected expected) {
  return {name,
          theory,
          [=] {
            std::vector<double> steps = {12};
            for (const double interval : intervals) steps.push_back(steps.back() + interval);
            return Clicking(steps, seconds);
          },
          {std::move(expected)}};
}

// So long that there are this many steps.
double ForSteps(size_t steps) {
  constexpr size_t kWindow = 1024;
  constexpr size_t kHop = kRate / 100;
  const size_t frames = (steps - 1) * kHop + kWindow;
  return static_cast<double>(frames) / kRate;
}

// Three clicks, one second and so many steps more than one second apart.
Control TwoBeats(double second, double twoBeats) {
  return Intervals(
      "three clicks 100 and " + std::to_string(second) + " steps apart",
      "One beat is 100 steps. Two of them are looked for within two steps of 200, and half a step "
      "further where a parabola through three steps has a top there; four are more than half of "
      "the length.",
      {100, second}, 7, {"tempo", 6000 / (twoBeats / 2), 0.05});
}

// Some of the lags are longer than half of the length, where there is nothing to correlate.
std::vector<Control> Lags() {
  const std::vector<double> even(13, 50);
  std::vector<double> late = even;
  late[7] = 60;
  std::vector<double> bars(15, 50.25);
  bars[7] = 48.25;
  const char* const kLate =
      "The first eight of 14 clicks are 50 steps apart, and so are the last six: so are most of "
      "them over four beats. All that are eight beats apart are 410 steps apart, but that is more "
      "than half of the length.";
  const char* const kBars =
      "16 clicks of which the second eight come 400 steps after the first: four beats are 201 "
      "steps "
      "in most places and 199 in the others. Twice four beats are 401 steps to the next whole one, "
      "and 405 lags are four more.";
  return {
      Intervals("14 clicks in seven seconds, six of them late", kLate, late, 7,
                {"tempo", 120, 0.1}),
      Intervals("14 clicks in 807 steps, six of them late", kLate, late, ForSteps(807),
                {"tempo", 120, 0.1}),
      Intervals("two bars of eight beats in 810 steps", kBars, bars, ForSteps(810),
                {"tempo", 120, 0.05}),
      Intervals("two bars of eight beats in nine seconds", kBars, bars, 9, {"tempo", 120, 0.05}),
      Intervals("bars of four beats in seven seconds",
                "Four beats are 200 steps throughout, two are 102 in most places, five 248 or "
                "more. Eight are more than half of the length.",
                {51, 51, 51, 47, 51, 51, 51, 47, 51, 51, 51, 47}, 7, {"tempo", 120, 0.05}),
      Intervals("bars of two slow beats in seven seconds",
                "Two beats are 300 steps, one is 149 in two places of three. Three and four are "
                "more than half of the length.",
                {149, 151, 149}, 7, {"tempo", 40, 0.05}),
      Intervals("pairs 150.75 steps apart",
                "A beat of 40 BPM is 150 steps. There the autocorrelation still rises.",
                {250, 150.75, 270, 150.75, 290, 150.75, 310, 150.75}, 20,
                {.measure = "tempo", .reason = "nothing that repeats itself"}),
      TwoBeats(202, 202),
      TwoBeats(203, 202.5),
      TwoBeats(206, 202),
      TwoBeats(198, 198),
      TwoBeats(197, 197.5),
      TwoBeats(194, 198)};
}

// Soft pairs half a second apart and a loud one a second apart, no other two within 1.5 s.
Control SoftBesideLoud(int soft, double bpm) {
  return {std::to_string(soft) + " pairs 4 dB over the floor, and one loud",
          "Beside a steady tone a soft burst is 3.5 times the floor and rises by ln 4.5 = 1.5, a "
          "loud one 400 times and by 6: 16 soft pairs weigh as much as it, 10 with the weight of "
          "exp(-1 / 2) for a second. It would be 17 with twice the floor, 6 with half of it.",
          [soft] {
            std::vector<std::pair<double, double>> bursts;
            int place = 30;
            for (int i = 0; i <= soft; ++i) {
              const double amplitude = i < soft ? 0.000327 : 0.0035;
              place += 161 + 11 * i;
              bursts.emplace_back(place * kStep, amplitude);
              place += i < soft ? 50 : 100;
              bursts.emplace_back(place * kStep, amplitude);
            }
            Waveform samples = Sine(kRate, place * kStep + 2, 7000, 0.3);
            for (const auto& [time, amplitude] : bursts) {
              AddBell(samples, kRate, time, 5000, amplitude);
            }
            return Scene{.output = {kRate, {std::move(samples)}}};
          },
          {{"tempo", bpm, 0.05 * bpm}}};
}

// Bursts at random, one band after the other, from none to two in 30 ms.
Control Swelling() {
  return {"bursts at random that swell every three seconds",
          "The mean over a second, taken off, leaves 0.18 of such a swell, whose autocorrelation "
          "is 0.03 beside that of the bursts: nothing. Over two seconds it leaves 0.59, and 0.3.",
          [] {
            constexpr int rate = 8000;
            Waveform samples = Sine(rate, 40, 3900, 0.01);
            Random random(5);
            int band = 0;
            for (double time = 0.2; time < 39.7; time += kStep) {
              const double chance = 0.33 * (1 - std::cos(2 * std::numbers::pi * time / 3));
              if (random.Uniform() >= chance) continue;
              const double hz = 60 * std::pow(4000 / 60.0, (band % 24 + 0.5) / 24);
              AddBell(samples, rate, time + kStep * random.Uniform(), hz, 0.1);
              ++band;
            }
            return Scene{.output = {rate, {std::move(samples)}}};
          },
          {{.measure = "tempo", .reason = "nothing that repeats itself"}}};
}

Control Beating(const std::string& name, const std::string& theory,
                const std::vector<double>& beats, const std::vector<double>& truth, double f) {
  return {name,
          theory,
          [=] {
            return Scene{
                .output = {16000, {Waveform(16000, 0.1F)}}, .beats = beats, .trueBeats = truth};
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
      Beating("beats beside by 70 ms and 0.99 ns, and by 70 ms and 1.01 ns",
              "Decimals that are off by a nanosecond are still within 70 ms: 2 * 2 / (4 + 4).",
              {5.57 + 0.99e-9, 6.07 + 1.01e-9, 6.43 - 0.99e-9, 6.93 - 1.01e-9}, {5.5, 6, 6.5, 7},
              0.5),
      Beating("a beat late by nearly a second, then one in time",
              "The first is passed over, the second hit: 2 * 1 / (2 + 2).", {6.5, 7}, {5.6, 7},
              0.5),
      Beating("a beat early by nearly a second, then one in time",
              "The first is passed over, the second hit: 2 * 1 / (2 + 2).", {5.6, 7}, {6.5, 7},
              0.5),
      Beating("wrong beats before 5 s",
              "The first 5 s count on neither side, from 5 s on all do: 2 * 2 / (3 + 2).",
              {1, 2, 3, 4.99, 5, 6}, {0.5, 4.9, 5, 6.05, 7}, 0.8)};
}

Control BeatsTooEarly() {
  Control control =
      Beating("no true beat but before 5 s", "None of them counts.", {6}, {1, 4.9}, 0);
  control.expected = {{.measure = "beat_f", .reason = "no beat of the reference after 5 s"}};
  return control;
}

// Only the first sample, of which the mean of both channels has all.
Control FirstSample() {
  return {"one sample at the very start",
          "It is no silence, and nothing sets in.",
          [] {
            Waveform samples(Frames(kRate, 7));
            samples.front() = 0.5F;
            return Scene{.output = {kRate, {samples, samples}}};
          },
          {{.measure = "tempo", .reason = "nothing that repeats itself"}}};
}

}  // namespace

std::vector<Control> RhythmControls() {
  std::vector<Control> controls = {Limping(2, 120), Limping(2.2, 60),      TwoTempos(),
                                   Bars(),          SoftBesideLoud(8, 60), SoftBesideLoud(12, 120),
                                   Swelling(),      FirstSample(),         BeatsTooEarly()};
  for (const auto part : {Lags, Beats}) {
    for (Control& each : part()) controls.push_back(std::move(each));
  }
  return controls;
}

}  // namespace host
