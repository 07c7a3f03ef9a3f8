#include <cmath>
#include <limits>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 48000;

Scene Of(Waveform samples, int rate = kRate) { return {.output = {rate, {std::move(samples)}}}; }

double Decibels(double amplitude) { return 20 * std::log10(amplitude); }

// Periods of 0, a, 0, -a.
Waveform QuarterRate(double amplitude, size_t count, double phase = 0) {
  return Sine(kRate, static_cast<double>(count) / kRate, kRate / 4.0, amplitude, phase);
}

Control OneSample(double height, size_t count, size_t place) {
  const auto all = static_cast<double>(count);
  return {"one sample of " + std::to_string(height) + " at place " + std::to_string(place) +
              " of " + std::to_string(count),
          "0.8 up or down alone among n: peak 20 log10 0.8, mean 0.8 / n, mean square 0.64 / n.",
          [=] {
            Waveform samples(count);
            samples[place] = static_cast<float>(height);
            return Of(samples);
          },
          {{"peak", Decibels(0.8), 1e-4},
           {"true_peak", Decibels(0.8), 1e-4},
           {"rms", Decibels(0.8) - 10 * std::log10(all), 1e-4},
           {"crest", 10 * std::log10(all), 1e-4},
           {"dc", height / all, 1e-9}}};
}

std::vector<Control> PeakControls() {
  std::vector<Control> controls;
  controls.push_back(
      {"sine of a quarter of the rate, amplitude 0.5",
       "Every fourth sample stands on the crest: peak 20 log10 0.5, RMS 3.0103 dB below, so the "
       "crest factor is 3.0103 dB; a mean of whole periods is 0. Floats round at 1e-7.",
       [] { return Of(QuarterRate(0.5, 9600)); },
       {{"peak", Decibels(0.5), 1e-4},
        {"rms", Decibels(0.5) - 10 * std::log10(2.0), 1e-4},
        {"crest", 10 * std::log10(2.0), 1e-4},
        {"dc", 0, 1e-6},
        {"clipped", 0, 1e-12}}});
  controls.push_back(
      {"the same sine, 45 degrees on",
       "The samples stand 3.0103 dB below the crest, which lies half-way between two of them, "
       "where interpolation by 4 looks; EBU Tech 3341 allows a true peak +0.2 and -0.4 dB.",
       [] { return Of(QuarterRate(0.5, 9600, std::numbers::pi / 4)); },
       {{"peak", Decibels(0.5) - 10 * std::log10(2.0), 1e-4}, {"true_peak", Decibels(0.5), 0.2}}});
  for (const double turn : {1.0, 3.0}) {
    controls.push_back(
        {turn < 2 ? "the same sine, 22.5 degrees on" : "the same sine, 67.5 degrees on",
         "The crest lies a quarter of the way between two samples, where only one of the three "
         "values in between stands; next to it the sine is 0.69 dB lower.",
         [turn] { return Of(QuarterRate(0.5, 9600, turn * std::numbers::pi / 8)); },
         {{"true_peak", Decibels(0.5), 0.2}}});
  }
  for (const double height : {-0.8, 0.8}) {
    controls.push_back(OneSample(height, 4800, 0));
    controls.push_back(OneSample(height, 4800, 4799));
    controls.push_back(OneSample(height, 4807, 4800));
    controls.push_back(OneSample(height, 4807, 4806));
  }
  controls.push_back({"a hum of 1e-25",
                      "The peak is -500 dBFS; its square is below what a float can be, so that it "
                      "has no RMS, and no distance from it.",
                      [] { return Of(Waveform(480, 1e-25F)); },
                      {{"peak", -500, 1e-4},
                       {.measure = "rms", .reason = audio_measures::kSilence},
                       {.measure = "crest", .reason = audio_measures::kSilence}}});
  controls.push_back({"square wave of full scale",
                      "All samples are 1 or -1: peak and RMS 0 dBFS, crest factor 0, each in a run "
                      "of ten at full scale.",
                      [] {
                        Waveform samples(9600);
                        for (size_t i = 0; i < samples.size(); ++i) {
                          samples[i] = i / 10 % 2 == 0 ? 1.0F : -1.0F;
                        }
                        return Of(samples);
                      },
                      {{"peak", 0, 1e-6},
                       {"rms", 0, 1e-6},
                       {"crest", 0, 1e-6},
                       {"dc", 0, 1e-9},
                       {"clipped", 1, 1e-9}}});
  controls.push_back({"constant of -0.25",
                      "The mean is the constant, RMS and peak its magnitude.",
                      [] { return Of(Waveform(4801, -0.25F)); },
                      {{"dc", -0.25, 1e-7},
                       {"peak", Decibels(0.25), 1e-5},
                       {"rms", Decibels(0.25), 1e-5},
                       {"crest", 0, 1e-5}}});
  controls.push_back(
      {"two channels, 0.5 and -0.125",
       "Each channel has its own figures.",
       [] {
         return Scene{.output = {kRate, {Waveform(480, 0.5F), Waveform(480, -0.125F)}}};
       },
       {{"dc", 0.5, 1e-7, "", 0},
        {"dc", -0.125, 1e-7, "", 1},
        {"peak", Decibels(0.5), 1e-5, "", 0},
        {"peak", Decibels(0.125), 1e-5, "", 1},
        {"rms", Decibels(0.125), 1e-5, "", 1}}});
  controls.push_back({"one sample of 0.5",
                      "It is its own peak, RMS and mean.",
                      [] { return Of({0.5F}); },
                      {{"peak", Decibels(0.5), 1e-5},
                       {"rms", Decibels(0.5), 1e-5},
                       {"crest", 0, 1e-5},
                       {"dc", 0.5, 1e-7},
                       {"clipped", 0, 1e-12}}});
  return controls;
}

constexpr float kFull = 32767.0F / 32768;

void Fill(Waveform& samples, size_t first, size_t count, float value) {
  std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(first), count, value);
}

Control ClippedControl() {
  return {"runs of 2, 3 and 5 samples at full scale",
          "Runs of three and more of one sign count: 3 and 5 upwards, 4 downwards; two do not, nor "
          "do three of changing sign, nor five just below full scale: 12 of 100 samples.",
          [] {
            Waveform samples(100, 0.25F);
            Fill(samples, 10, 2, kFull);
            Fill(samples, 20, 3, kFull);
            Fill(samples, 30, 5, 1.0F);
            Fill(samples, 40, 4, -kFull);
            Fill(samples, 50, 5, 32766.0F / 32768);
            Fill(samples, 60, 1, kFull);
            Fill(samples, 61, 1, -kFull);
            Fill(samples, 62, 1, kFull);
            Scene scene = Of(samples);
            scene.fullScale = kFull;
            return scene;
          },
          {{"clipped", 0.12, 1e-9}}};
}

Control ClippedEnds() {
  return {"two samples at full scale at the start and three at the end",
          "Nothing comes before the first sample: 3 of 100.",
          [] {
            Waveform samples(100, 0.25F);
            Fill(samples, 0, 2, -1);
            Fill(samples, 97, 3, 1);
            return Of(samples);
          },
          {{"clipped", 0.03, 1e-9}}};
}

Control ClippedBlocks() {
  return {"runs at full scale around places 256, 512, 768 and 1024",
          "What stands in a row counts wherever it stands: 4 around 768, 3 that end at 1024 and "
          "nothing else. Two and two with other samples between do not, nor does what is infinite "
          "or no number.",
          [] {
            Waveform samples(1536, 0.25F);
            Fill(samples, 254, 2, kFull);
            Fill(samples, 512, 2, kFull);
            Fill(samples, 766, 4, kFull);
            Fill(samples, 1021, 3, -kFull);
            Fill(samples, 1100, 5, std::numeric_limits<float>::infinity());
            Fill(samples, 1200, 5, std::numeric_limits<float>::quiet_NaN());
            Scene scene = Of(samples);
            scene.fullScale = kFull;
            return scene;
          },
          {{"clipped", 7.0 / 1536, 1e-9}}};
}

Control FloorOfOddBlocks() {
  return {"0.2 s at 11025 Hz",
          "A block of 20 ms has 220.5 samples there, for which 221 are taken, so that nine fit; "
          "ten is the least.",
          [] { return Of(Waveform(2205, 0.5F), 11025); },
          {{.measure = "noise_floor", .reason = audio_measures::kTooShort}}};
}

Control NoiseFloorControl() {
  return {
      "96 blocks of 20 ms at rising levels",
      "Block k has the amplitude k / 100, in a shuffled order. Rank 0.1 * 95 = 9.5 lies half-way "
      "between the tenth and the eleventh: 0.105. The last 10 ms of silence are no block.",
      [] {
        Waveform samples;
        for (int i = 0; i < 96; ++i) {
          const int k = i * 37 % 96 + 1;
          Append(samples, Waveform(Frames(kRate, 0.02), static_cast<float>(k / 100.0)));
        }
        samples.resize(samples.size() + Frames(kRate, 0.01));
        return Of(samples);
      },
      {{"noise_floor", Decibels(0.105), 1e-4}}};
}

Control ShortestFloor(int rate) {
  return {"ten blocks of 20 ms at rising levels, at " + std::to_string(rate) + " Hz",
          "Rank 0.1 * 9 = 0.9 lies between the lowest, 0.1, and the next, 0.2: 0.19.",
          [rate] {
            Waveform samples;
            for (int i = 10; i > 0; --i) {
              Append(samples, Waveform(Frames(rate, 0.02), static_cast<float>(i / 10.0)));
            }
            return Of(samples, rate);
          },
          {{"noise_floor", Decibels(0.19), 1e-4}}};
}

}  // namespace

std::vector<Control> LevelControls() {
  std::vector<Control> controls = PeakControls();
  controls.push_back(ClippedControl());
  controls.push_back(ClippedEnds());
  controls.push_back(ClippedBlocks());
  controls.push_back(NoiseFloorControl());
  controls.push_back(ShortestFloor(kRate));
  controls.push_back(ShortestFloor(11025));
  controls.push_back(FloorOfOddBlocks());
  return controls;
}

}  // namespace host
