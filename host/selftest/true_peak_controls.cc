#include <algorithm>
#include <cmath>
#include <numbers>

#include "selftest/control.h"

namespace host {

namespace {

constexpr int kRate = 48000;
constexpr int kReach = 24;  // Oversampled steps of the sinc on either side.
constexpr double kHeight = 0.25;

double Decibels(double amplitude) { return 20 * std::log10(amplitude); }

// The sinc under its window, so many oversampled steps after its middle.
double WindowedSinc(int step, int oversampling) {
  if (step == 0) return 1;
  if (std::abs(step) >= kReach) return 0;
  const double turn = std::numbers::pi * step / oversampling;
  return std::sin(turn) / turn * (0.5 + 0.5 * std::cos(std::numbers::pi * step / kReach));
}

// Waveform whose signs are those that the sinc has around a value `phase` steps after a sample, so
// that its weights add up there. All are of one magnitude but the second one from the middle of
// values that are not half-way, which is so much lower that values half-way are lower too.
Waveform Burst(int oversampling, int phase) {
  Waveform burst;
  for (int step = kReach - oversampling + phase; step > -kReach; step -= oversampling) {
    const bool low = 2 * phase != oversampling && std::abs(step) == oversampling - 1;
    const double sign = WindowedSinc(step, oversampling) < 0 ? -1 : 1;
    burst.push_back(static_cast<float>(sign * kHeight * (low ? 0.25 : 1)));
  }
  return burst;
}

// The largest magnitude of the sums of sincs at the samples and at the steps between them.
double PeakOf(const Waveform& burst, int oversampling) {
  double peak = 0;
  const int end = static_cast<int>(burst.size()) * oversampling;
  for (int place = 0; place < end; ++place) {
    double sum = 0;
    for (int i = 0; i < static_cast<int>(burst.size()); ++i) {
      sum += static_cast<double>(burst[static_cast<size_t>(i)]) *
             WindowedSinc(place - i * oversampling, oversampling);
    }
    peak = std::max(peak, std::abs(sum));
  }
  return peak;
}

// The burst alone in silence, its last sample the last one of `count`.
Waveform EndingWith(const Waveform& burst, size_t count) {
  Waveform samples(count - burst.size());
  Append(samples, burst);
  return samples;
}

const char* const kTheory =
    "Each sample has the sign of the sinc under its window: what is interpolated in the middle is "
    "the sum of the magnitudes of all its weights times theirs; floats round at 1e-6.";

Control At(int rate, int oversampling, int phase, double sign = 1) {
  return {std::string("a burst ") + (sign < 0 ? "upside down" : "in phase") +
              " with the sinc, at " + std::to_string(rate) + " Hz and step " +
              std::to_string(phase) + " of " + std::to_string(oversampling),
          kTheory,
          [=] {
            const Waveform burst = Scaled(Burst(oversampling, phase), sign);
            return Scene{.output = {rate, {EndingWith(burst, 480)}}};
          },
          {{"true_peak", Decibels(PeakOf(Burst(oversampling, phase), oversampling)), 1e-4}}};
}

// The first of two channels ends so many samples after its burst; the second one, which is upside
// down, with its own.
Control InChannels(size_t end, size_t later) {
  const Waveform quarter = Burst(4, 1);
  const Waveform half = Burst(4, 2);
  return {"two channels with a burst each, that end at " + std::to_string(end) + " and " +
              std::to_string(later) + " later",
          kTheory,
          [=] {
            Waveform left = EndingWith(quarter, end);
            left.resize(end + later);
            const Waveform right = EndingWith(half, end + later);
            return Scene{.output = {kRate, {left, Scaled(right, -0.5)}}};
          },
          {{"true_peak", Decibels(PeakOf(quarter, 4)), 1e-4, "", 0},
           {"true_peak", Decibels(PeakOf(half, 4) / 2), 1e-4, "", 1}}};
}

// Each at another level.
Control ManyChannels(int count) {
  Control control = {
      "a burst in each of " + std::to_string(count) + " channels",
      "Up to 64 channels have a peak each.",
      [count] {
        Scene scene = {.output = {kRate, {}}};
        for (int i = 0; i < count; ++i) {
          scene.output.channels.push_back(Scaled(EndingWith(Burst(4, 2), 100), 1 / (1.0 + i)));
        }
        return scene;
      },
      {}};
  if (count > 64) {
    control.expected.push_back(
        {.measure = "true_peak", .reason = "a rate or channel count that is out of range"});
    return control;
  }
  for (int i = 0; i < count; ++i) {
    control.expected.push_back(
        {"true_peak", Decibels(PeakOf(Burst(4, 2), 4) / (1 + i)), 1e-4, "", i});
  }
  return control;
}

}  // namespace

std::vector<Control> TruePeakControls() {
  std::vector<Control> controls = {At(kRate, 4, 1),     At(kRate, 4, 2),  At(kRate, 4, 3),
                                   At(8000, 4, 2),      At(100, 4, 2),    At(95999, 4, 2),
                                   At(96000, 2, 1),     At(191999, 2, 1), At(kRate, 4, 2, -1),
                                   At(96000, 2, 1, -1), ManyChannels(64), ManyChannels(65)};
  // Where registers of four samples and runs of 4096 end, and where they do not.
  for (const size_t later : {0U, 1U, 2U, 3U, 4098U}) controls.push_back(InChannels(4100, later));
  controls.push_back(InChannels(4097, 8));
  controls.push_back({"a burst at 192 kHz",
                      "From there on nothing is interpolated: the samples themselves.",
                      [] {
                        return Scene{.output = {192000, {EndingWith(Burst(4, 2), 480)}}};
                      },
                      {{"true_peak", Decibels(kHeight), 1e-4}}});
  return controls;
}

}  // namespace host
