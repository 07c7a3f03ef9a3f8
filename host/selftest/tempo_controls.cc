#include <cmath>
#include <functional>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 16000;
constexpr double kStep = 0.01;  // s
const char* const kNothing = "nothing that repeats itself";

// Something that sets in: one sample, or soft bursts of these tones.
struct Onset {
  double time = 0;  // s
  std::vector<double> tones = {};
  double gain = 1;
};

Waveform Sounding(int rate, double seconds, const std::vector<Onset>& onsets) {
  Waveform samples(Frames(rate, seconds));
  for (const Onset& onset : onsets) {
    if (onset.tones.empty()) samples[Frames(rate, onset.time)] = 0.5F;
    for (const double hz : onset.tones) AddBell(samples, rate, onset.time, hz, 0.1 * onset.gain);
  }
  return samples;
}

// What sets in so seldom that no other two of them lie a beat of 40 BPM or less apart: pairs, each
// so many steps of 10 ms apart, then single ones.
struct Sparse {
  std::vector<int> pairs = {};
  size_t singles = 0;
  std::vector<double> pairTones = {};
  std::vector<double> singleTones = {};
  bool steady = false;  // Beside a tone of 7 kHz that raises the floor to 55 dB below the bursts.
  double pairGain = 1;
  double singleGain = 1;
};

std::vector<Onset> OnsetsOf(const Sparse& sparse) {
  std::vector<Onset> onsets;
  int place = 30;  // Steps.
  const auto add = [&](int after, const std::vector<double>& tones, double gain) {
    place += after;
    onsets.push_back({place * kStep, tones, gain});
  };
  // Gaps that grow, so that no two distances are the same.
  int gap = 161;
  for (const int apart : sparse.pairs) {
    add(gap, sparse.pairTones, sparse.pairGain);
    add(apart, sparse.pairTones, sparse.pairGain);
    gap += 11;
  }
  for (size_t i = 0; i < sparse.singles; ++i) {
    add(gap, sparse.singleTones, sparse.singleGain);
    gap += 11;
  }
  return onsets;
}

const char* const kSparseTheory =
    "Onsets that lie more than a beat of 40 BPM apart but for the pairs among them: the "
    "autocorrelation is the number of pairs over that of onsets, to a sixth. Where nothing repeats "
    "itself two, four and eight beats on, what is read there is 3 steps off at most, over so many "
    "beats: 3.1 steps with the half of one beat.";

// steps: of the beat, 0 where there is none.
Control SparseControl(const std::string& name, const Sparse& sparse, int steps, double seconds,
                      int rate = kRate) {
  Control control = {name,
                     kSparseTheory,
                     [=] {
                       Waveform samples = Sounding(rate, seconds, OnsetsOf(sparse));
                       if (sparse.steady) samples = Sum(samples, Sine(rate, seconds, 7000, 0.3));
                       return Scene{.output = {rate, {std::move(samples)}}};
                     },
                     {}};
  if (steps == 0) {
    control.expected = {{.measure = "tempo", .reason = kNothing}};
  } else {
    const double bpm = 60 / (steps * kStep);
    control.expected = {{"tempo", bpm, bpm * 3.1 / (steps - 3.1)}};
  }
  return control;
}

std::vector<Control> Limits() {
  return {SparseControl("pairs 0.25 s apart", {{25, 25, 25, 25}}, 25, 20),
          SparseControl("pairs 0.24 s apart", {{24, 24, 24, 24}}, 0, 20),
          SparseControl("pairs 1.5 s apart", {{150, 150, 150, 150}}, 150, 20),
          SparseControl("pairs 1.52 s apart", {{152, 152, 152, 152}}, 0, 20),
          // Steps of 10.02 ms, of which 24.9 are the shortest beat, and of 9.98 ms, of which 150.3
          // are the longest.
          SparseControl("pairs 0.24 s apart at 22050 Hz", {{24, 24, 24, 24}}, 24, 20, 22050),
          SparseControl("pairs 1.51 s apart at 11025 Hz", {{151, 151, 151, 151}}, 151, 20, 11025)};
}

// 1 for 0.5 s, exp(-1 / 2) for 1 s and for 0.25 s.
std::vector<Control> Likelihoods() {
  return {
      SparseControl("three pairs 1 s apart, three 0.5 s", {{100, 100, 100, 50, 50, 50}}, 50, 30),
      SparseControl("four pairs 1 s apart, two 0.5 s", {{100, 100, 100, 100, 50, 50}}, 100, 40),
      SparseControl("three pairs 0.25 s apart, three 0.5 s", {{25, 25, 25, 50, 50, 50}}, 50, 30),
      SparseControl("four pairs 0.25 s apart, two 0.5 s", {{25, 25, 25, 25, 50, 50}}, 25, 40)};
}

// It takes 8 over the root of the steps, a tenth at least: 0.30 in 7 s, a tenth from 64 s on.
std::vector<Control> Thresholds() {
  return {SparseControl("one pair of three onsets in 7.06 s", {{50}, 1}, 50, 7.06),
          SparseControl("one pair of four onsets in 7.06 s", {{50}, 2}, 0, 7.06),
          SparseControl("one pair of six onsets in 140 s", {{50}, 4}, 50, 140, 8000),
          SparseControl("one pair of eleven onsets in 220 s", {{50}, 9}, 0, 220, 8000)};
}

Control Jittered() {
  Control control = SparseControl("eight pairs from 0.47 to 0.53 s apart",
                                  {{47, 49, 51, 53, 47, 49, 51, 53}}, 50, 21);
  control.theory =
      "Bells of nine steps make one peak of what lies within six steps, twice as high as any of "
      "the four would be, from 0.49 to 0.51 s; two, four and eight beats on nothing repeats "
      "itself.";
  control.expected.front().tolerance = 120 * 4.1 / (50 - 4.1);
  return control;
}

// Either there is one onset or two, half a second apart.
std::vector<Expected> TwoOnsets(bool heard) {
  if (heard) return {{"tempo", 120, 6}};
  return {{.measure = "tempo", .reason = kNothing}};
}

// The first of two clicks. At 16 kHz windows have 1024 samples, 64 ms, just above 25600 Hz 2048.
Control FirstWindow(double first, bool heard, int rate = kRate) {
  return {"a click after " + std::to_string(first) + " s at " + std::to_string(rate) +
              " Hz, and one 0.5 s later",
          "What is in the first window sets in before it: there is one onset or two.",
          [=] {
            return Scene{.output = {rate, {Sounding(rate, 7, {{first}, {first + 0.5}})}}};
          },
          TwoOnsets(heard)};
}

// The second of two clicks is in the last window alone.
Control LastWindow(bool heard) {
  return {std::string("two clicks, the second one in the last window, which is ") +
              (heard ? "whole" : "one sample too short"),
          "Windows that are not whole do not count: there is one onset or two.",
          [heard] {
            Waveform samples(2000 * 160 + 1024);
            samples[samples.size() - 150] = 0.9F;
            samples[samples.size() - 150 - kRate / 2] = 0.05F;
            samples.resize(samples.size() - (heard ? 0 : 1));
            return Scene{.output = {kRate, {std::move(samples)}}};
          },
          TwoOnsets(heard)};
}

// Eight beats last this many steps.
Control EightBeats(double steps) {
  const double beat = steps * kStep / 8;
  return {"eight beats in " + std::to_string(steps) + " steps",
          "Over eight beats the mean of the onsets' distances is known to a twentieth of a step, "
          "as the bell that they are smoothed by is nearly a parabola at its top.",
          [beat] {
            std::vector<Onset> onsets;
            for (double time = 0.1; time < 29.9; time += beat) onsets.push_back({time});
            return Scene{.output = {kRate, {Sounding(kRate, 30, onsets)}}};
          },
          {{"tempo", 60 / beat, 60 / beat * 0.05 / steps}}};
}

// At this share of the way from 60 Hz to 8 kHz in octaves.
double Between(double share) { return 60 * std::pow(8000.0 / 60, share); }

std::vector<Control> InBands() {
  const double alone = Between(21.25 / 24);
  return {
      SparseControl("pairs in two bands among ten onsets in one",
                    {{50}, 10, {Between(18.5 / 24), Between(19.5 / 24)}, {alone}, true}, 50, 28),
      SparseControl("pairs at both ends of a band among ten onsets in another",
                    {{50}, 10, {Between(18.15 / 24), Between(18.85 / 24)}, {alone}, true}, 0, 28),
      SparseControl("pairs at 5 kHz among onsets at 2 kHz", {{50, 50}, 2, {5000}, {2000}, true}, 50,
                    20),
      SparseControl("pairs at 12 kHz among onsets at 2 kHz", {{50, 50}, 2, {12000}, {2000}, true},
                    50, 20, 48000),
      SparseControl("pairs at 18 kHz among onsets at 2 kHz", {{50, 50}, 2, {18000}, {2000}, true},
                    0, 20, 48000)};
}

// Bins of a window of 1024 samples at these rates: at 17554 Hz 60 Hz are 3.50005 of them, at 17560
// Hz 3.4989. At 48011 Hz 16 kHz are 682.51 of 2048, at 48012 Hz 682.496.
Control AtEdge(int rate, size_t window, double bin, bool heard) {
  const double hz = bin * rate / static_cast<double>(window);
  Control control =
      SparseControl("pairs in bin " + std::to_string(bin) + " at " + std::to_string(rate) + " Hz",
                    {{50, 50, 50}, 1, {hz}, {2000}, true, 0.1, 0.03}, heard ? 50 : 0, 9.3, rate);
  control.theory =
      "The bins of the bands start at 60 Hz and end at 16 kHz, rounded to whole ones. A bin sees a "
      "burst that is one bin and a half away 15 dB below its height, 20 dB above the floor, and "
      "one that is two and a half away 34 dB below it, at the floor.";
  return control;
}

std::vector<Control> AtEdges() {
  return {AtEdge(17554, 1024, 1.5, false), AtEdge(17560, 1024, 1.5, true),
          AtEdge(48011, 2048, 683.5, true), AtEdge(48012, 2048, 683.5, false)};
}

// A burst rises by the logarithm of its power over the floor: by 12.7 as it is, by so much less as
// it is softer.
std::vector<Control> SoftPairs() {
  return {SparseControl("four pairs 30 dB softer, at 5.8, and two onsets at 12.7",
                        {{50, 50, 50, 50}, 2, {5000}, {2000}, true, 0.0316}, 50, 28),
          SparseControl("four pairs 46 dB softer, at 2.3, and two onsets at 12.7",
                        {{50, 50, 50, 50}, 2, {5000}, {2000}, true, 0.005}, 0, 28)};
}

// What has no beat.
Control Without(const std::string& name, const std::string& theory,
                const std::function<Waveform()>& make) {
  return {name,
          theory,
          [make] {
            return Scene{.output = {kRate, {make()}}};
          },
          {{.measure = "tempo", .reason = kNothing}}};
}

std::vector<Control> WithoutBeat() {
  return {Without("white noise",
                  "It rises all the time, by a mean that is taken off; what is left is at random, "
                  "and it takes four standard deviations to be a beat.",
                  [] { return WhiteNoise(20 * kRate, 0.1, 71); }),
          Without("a tone throughout and a burst after half a second",
                  "What is there from the start on does not set in: there is one onset.",
                  [] {
                    const Waveform burst = Sounding(kRate, 20, {{0.5, {2000}}});
                    return Sum(burst, Sine(kRate, 20, 7000, 0.3));
                  }),
          Without("two clicks half a second less than 2048 steps apart",
                  "The last one does not come before the first one, though transforms of 2048 "
                  "steps go round.",
                  [] {
                    return Sounding(kRate, 20.5, {{0.3}, {0.3 + 19.98}});
                  })};
}

// Less so many samples.
Control SixSeconds(size_t less, Expected expected) {
  return {"six seconds of clicks less " + std::to_string(less) + " samples",
          "Six seconds are enough.",
          [less] {
            std::vector<Onset> onsets;
            for (int i = 0; i < 11; ++i) onsets.push_back({0.2 + 0.5 * i});
            Waveform samples = Sounding(kRate, 6, onsets);
            samples.resize(samples.size() - less);
            return Scene{.output = {kRate, {std::move(samples)}}};
          },
          {std::move(expected)}};
}

}  // namespace

std::vector<Control> TempoControls() {
  std::vector<Control> controls = {Jittered(),
                                   FirstWindow(0.05, false),
                                   FirstWindow(0.08, true),
                                   FirstWindow(0.06, false, 25610),
                                   LastWindow(true),
                                   LastWindow(false),
                                   EightBeats(400.25),
                                   EightBeats(399.6),
                                   EightBeats(400.5)};
  for (const auto part :
       {Limits, Likelihoods, Thresholds, InBands, AtEdges, SoftPairs, WithoutBeat}) {
    for (Control& each : part()) controls.push_back(std::move(each));
  }
  controls.push_back({"white noise, upside down in the other channel",
                      "A beat is that of the mean of both, which is silence.",
                      [] {
                        const Waveform noise = WhiteNoise(10 * kRate, 0.1, 72);
                        return Scene{.output = {kRate, {noise, Scaled(noise, -1)}}};
                      },
                      {{.measure = "tempo", .reason = audio_measures::kSilence}}});
  controls.push_back(SixSeconds(0, {"tempo", 120, 0.1}));
  controls.push_back(SixSeconds(1, {.measure = "tempo", .reason = audio_measures::kTooShort}));
  return controls;
}

}  // namespace host
