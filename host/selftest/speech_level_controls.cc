#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "selftest/control.h"

namespace host {

namespace {

double Decibels(double amplitude) { return 20 * std::log10(amplitude); }

// The time, in units of its 30 ms, until an envelope of two smoothings has gone down to `share` of
// what it was: (1 + t) exp(-t) = share.
double FallTime(double share) {
  double low = 0;
  double high = 50;
  for (int i = 0; i < 100; ++i) {
    const double middle = (low + high) / 2;
    ((1 + middle) * std::exp(-middle) > share ? low : high) = middle;
  }
  return low;
}

// Bursts of constant magnitude on, silence in between.
Control SpeechControl(const std::string& name, int rate, double on, double off) {
  const int bursts = 12;
  // The threshold over the magnitude of a burst, for an activity `a`: active level less margin.
  double activity = on / (on + off);
  for (int i = 0; i < 50; ++i) {
    const double share = std::pow(10, -15.9 / 20) * std::sqrt(on / (on + off) / activity);
    const double longer = 0.03 * (FallTime(share) - FallTime(1 - share)) + 0.2;
    activity = (on + longer) / (on + off);
  }
  const double level = Decibels(0.25) + 10 * std::log10(on / (on + off) / activity);
  return {name,
          "Each burst is active for its time, the 0.2 s of hang-over, and what the envelope of two "
          "smoothings of 30 ms takes to fall to 15.9 dB below the active level less what it takes "
          "to rise to it. All energy over that time is the active level. The method reads between "
          "thresholds 6 dB apart on a line: 5 ms a burst.",
          [=] {
            Waveform samples;
            for (int i = 0; i < bursts; ++i) {
              for (size_t n = 0; n < Frames(rate, on); ++n) {
                samples.push_back(n % 8 < 4 ? 0.25F : -0.25F);
              }
              samples.resize(samples.size() + Frames(rate, off));
            }
            return Scene{.output = {rate, {samples}}};
          },
          {{"activity", activity, 0.006 / (on + off)},
           {"active_level", level, Decibels(1 + 0.003 / on)}}};
}

// Of so many samples.
struct Active {
  double level = 0;  // dB
  double share = 0;
};

// What P.56 writes down, a sample at a time: the envelope, how long it has been above each of the
// thresholds or was so within the hang-over, and where the line between two of them lies 15.9 dB
// above the threshold.
Active ByDefinition(std::span<const float> samples, int rate) {
  constexpr int kLowest = -20;
  constexpr size_t kCount = 24;
  const double keep = std::exp(-1 / (0.03 * rate));
  const auto hangover = static_cast<int>(std::ceil(0.2 * rate));
  std::array<double, kCount> thresholds;
  for (size_t i = 0; i < kCount; ++i) {
    thresholds[i] = std::ldexp(1, kLowest + static_cast<int>(i));
  }
  std::array<int, kCount> since;
  std::array<double, kCount> active = {};
  since.fill(std::numeric_limits<int>::max() / 2);
  double first = 0;
  double second = 0;
  for (const float sample : samples) {
    first = keep * first + (1 - keep) * std::abs(sample);
    second = keep * second + (1 - keep) * first;
    for (size_t i = 0; i < kCount; ++i) {
      since[i] = second >= thresholds[i] ? 0 : since[i] + 1;
      active[i] += since[i] <= hangover ? 1 : 0;
    }
  }
  const double energy = Energy(samples);
  const auto level = [&](size_t i) { return 10 * std::log10(energy / active[i]); };
  const auto above = [&](size_t i) { return level(i) - Decibels(thresholds[i]); };
  size_t i = 1;
  while (i + 1 < kCount && above(i) > 15.9) ++i;
  const double part = (above(i - 1) - 15.9) / (above(i - 1) - above(i));
  const double between = level(i - 1) + part * (level(i) - level(i - 1));
  const double mean = 10 * std::log10(energy / static_cast<double>(samples.size()));
  return {between, std::pow(10, (mean - between) / 10)};
}

// Noise in syllables of growing length and level.
Waveform Syllables(int rate, double gain) {
  Waveform samples;
  for (int i = 0; i < 8; ++i) {
    const double rms = 0.1 * gain * std::pow(1.3, i);
    Append(samples, WhiteNoise(Frames(rate, 0.05 + 0.07 * i), rms, 31 + static_cast<uint64_t>(i)));
    samples.resize(samples.size() + Frames(rate, 0.15 + 0.05 * i));
  }
  return samples;
}

Control Speech(int rate, double gain) {
  const Active active = ByDefinition(Syllables(rate, gain), rate);
  return {
      "syllables of noise at gain " + std::to_string(gain) + " and " + std::to_string(rate) + " Hz",
      "P.56 followed a sample at a time: envelope, hang-over, and the line between the two "
      "thresholds 6 dB apart around the one sought.",
      [=] {
        return Scene{.output = {rate, {Syllables(rate, gain)}}};
      },
      {{"activity", active.share, 1e-6}, {"active_level", active.level, 1e-5}}};
}

// A square wave of this level, or why there is none.
Control Steady(double level, const std::string& reason) {
  return {
      "a square wave of " + std::to_string(level) + " dBFS for 10 s",
      "It is active but for the rise of the envelope, 20 ms. The thresholds reach from 2^-20 to "
      "2^3 of full scale, and the one sought lies 15.9 dB below the level: from -104.5 to 34.0 "
      "dBFS there is one.",
      [level] {
        Waveform samples(80000, static_cast<float>(std::pow(10, level / 20)));
        for (size_t i = 0; i < samples.size(); i += 2) samples[i] = -samples[i];
        return Scene{.output = {8000, {samples}}};
      },
      {{"active_level", level, 0.02, reason}, {"activity", 1, 0.005, reason}}};
}

Control Click(float height) {
  return {
      "one sample of " + std::to_string(height),
      "Smoothed twice over 240 samples it rises to 1 / (240 e) of its height: at 0.001 past the "
      "lowest threshold alone, 28 dB below the level of that time, at 0.0001 past none.",
      [height] {
        Waveform samples(8000);
        samples[4000] = height;
        return Scene{.output = {8000, {samples}}};
      },
      {{"active_level", 0, 0, "no activity as long as a sound"}}};
}

}  // namespace

std::vector<Control> SpeechLevelControls() {
  std::vector<Control> controls = {
      SpeechControl("bursts of 1 s, 1 s apart, at 16 kHz", 16000, 1, 1),
      SpeechControl("bursts of 0.4 s, 0.8 s apart, at 8 kHz", 8000, 0.4, 0.8),
      Steady(-104.6, "below the lowest threshold"),
      Steady(-104.4, ""),
      Steady(33.9, ""),
      Steady(34.1, "no activity as long as a sound"),
      Click(1e-3F),
      Click(1e-4F)};
  for (const double gain : {0.01, 0.7, 1.0, 1.4}) controls.push_back(Speech(8002, gain));
  return controls;
}

}  // namespace host
