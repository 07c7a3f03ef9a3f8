#include <algorithm>
#include <cmath>
#include <utility>

#include "audio_measures/measure.h"
#include "selftest/control.h"

namespace host {

namespace {

// Where the longest transforms of those that take 0.2 s, 4096 samples, fit into less.
constexpr int kRate = 24000;
constexpr double kEchoGain = 0.05;

// What each measure takes at least, and what it is of that much white noise. No tolerance: it is
// none of noise, and controls of its own are as short.
struct Shortest {
  std::string_view measure;
  double seconds = 0;
  double value = 0;
  double tolerance = 0;
};

constexpr Shortest kShortest[] = {{"loudness", 0.4},
                                  {"loudness_range", 3},
                                  {"noise_floor", 0.2},
                                  {"noise_reduction", 1},
                                  {"speech_retained", 1},
                                  {"delta_snr", 1},
                                  {"musical", 1},
                                  {"erle", 0.2},
                                  {"convergence", 0.2},
                                  {"pitch_cents", 0.2},
                                  {"tempo", 6},
                                  {"bandwidth", 0.6, 0.99 * kRate / 2, 50},
                                  {"bandwidth_40db", 0.6, kRate / 2.0, 1e-6},
                                  {"delay", 0.2, 0, 0.002 / kRate},
                                  {"delay_track", 4, 0, 0.002 / kRate},
                                  {"drift", 6, 0, 0.05},
                                  {"gain", 0.2, 0, 1e-6},
                                  {"polarity", 0.2, 1, 1e-9},
                                  {"snr", 0.2, 120, 1e-6},
                                  {"si_sdr", 0.2, 120, 1e-6},
                                  {"seg_snr", 0.2, 35, 1e-6},
                                  {"fw_seg_snr", 0.2, 35, 1e-6},
                                  {"cepstral_distance", 0.2, 0, 1e-3},
                                  {"lsd", 0.2, 0, 1e-3},
                                  {"band_difference", 0.2, 0, 1e-3},
                                  {"band_difference_worst", 0.2, 0, 1e-3},
                                  {"stoi", 0.5, 1, 1e-4},
                                  {"estoi", 0.5, 1, 1e-4},
                                  {"near_sdr", 0.2, 120, 1e-6},
                                  {"codec_delay", 0.2, 0, 0.002 / kRate},
                                  {"band_limit", 0.6, kRate / 2.0, 1e-6}};

Scene Copies(size_t frames) {
  const ControlSound sound = {kRate, {WhiteNoise(frames, 0.1, 92)}};
  return {.output = sound, .reference = sound, .far = sound, .near = sound, .input = sound};
}

// All measures that take as long, of exactly that, and of one frame less.
void AddCopies(double seconds, std::vector<Control>& controls) {
  std::vector<Expected> enough;
  std::vector<Expected> less;
  for (const Shortest& each : kShortest) {
    if (each.seconds != seconds) continue;
    if (each.tolerance > 0) enough.push_back({each.measure, each.value, each.tolerance});
    less.push_back({.measure = each.measure, .reason = audio_measures::kTooShort});
  }
  const std::string length = std::to_string(seconds) + " s of white noise";
  controls.push_back({length + " throughout",
                      "What a measure takes at least is enough for it. The output is what it is "
                      "measured against, and white: 99 % of its energy lie below 99 % of half the "
                      "rate, to 50 Hz by chance.",
                      [seconds] { return Copies(Frames(kRate, seconds)); }, std::move(enough)});
  controls.push_back({length + " throughout less one sample",
                      "What a measure takes at least is written down with it.",
                      [seconds] { return Copies(Frames(kRate, seconds) - 1); }, std::move(less)});
}

// At 8004 Hz 20 ms and 0.1 s are rounded down to whole samples.
Control RoundedDown(std::string_view measure, size_t frames) {
  return {std::string(measure) + " of " + std::to_string(frames) + " samples at 8004 Hz",
          "They make as many blocks as it takes, of 160 samples for 20 ms or 800 for 0.1 s, but "
          "less time than it takes.",
          [frames] {
            return Scene{.output = {8004, {WhiteNoise(frames, 0.1, 95)}}};
          },
          {{.measure = measure, .reason = audio_measures::kTooShort}}};
}

Control Echo() {
  return {"an echo of 0.2 s, 26 dB down",
          "Ten blocks of 20 ms are the least that an echo is looked at in. All of them are the far "
          "end alone, and the echo has its gain from the start.",
          [] {
            const Waveform far = WhiteNoise(Frames(kRate, 0.2), 0.1, 93);
            return Scene{.output = {kRate, {Scaled(far, kEchoGain)}},
                         .far = {kRate, {far}},
                         .input = {kRate, {far}}};
          },
          {{"erle", -20 * std::log10(kEchoGain), 1e-4}, {"convergence", 0, 1e-9}}};
}

// A signal of which the output has the start and the reference the end, and none has both.
Control NothingInCommon() {
  return {"an output that ends within the input before the reference begins",
          "Each has enough in common with the input, and nothing with the other.",
          [] {
            constexpr int kLowRate = 8000;
            constexpr std::ptrdiff_t kCommon = 6000;
            const Waveform input = WhiteNoise(16000, 0.1, 97);
            Waveform output = WhiteNoise(10000, 0.1, 98);
            Append(output, std::span(input).first(kCommon));
            Waveform reference(input.end() - kCommon, input.end());
            Append(reference, WhiteNoise(10000, 0.1, 99));
            return Scene{.output = {kLowRate, {output}},
                         .reference = {kLowRate, {reference}},
                         .input = {kLowRate, {input}},
                         .searchSeconds = 1.5};
          },
          {{.measure = "noise_reduction", .reason = audio_measures::kTooShort},
           {.measure = "speech_retained", .reason = audio_measures::kTooShort},
           {.measure = "delta_snr", .reason = audio_measures::kTooShort},
           {.measure = "musical", .reason = audio_measures::kTooShort}}};
}

// Eleven blocks: two windows of ten.
Control TwoWindows() {
  const double first = -10 * std::log10((1 + 9 * kEchoGain * kEchoGain) / 10);
  const double second = -20 * std::log10(kEchoGain);
  return {
      "an echo of 0.22 s, 26 dB down after its first 20 ms",
      "Each block has the same energy, so that of the first ten a tenth and the rest of the "
      "echo are left. The median of two is their mean. From the second window on, 20 ms after "
      "the start, it is 20 dB down.",
      [] {
        constexpr size_t kBlock = kRate / 50;
        const auto at = static_cast<std::ptrdiff_t>(kBlock);
        Waveform far = WhiteNoise(11 * kBlock, 0.1, 94);
        for (size_t start = 0; start < far.size(); start += kBlock) {
          const auto block = std::span(far).subspan(start, kBlock);
          const double gain = 0.1 * std::sqrt(kBlock / Energy(block));
          for (float& sample : block) sample = static_cast<float>(sample * gain);
        }
        Waveform output = Scaled(far, kEchoGain);
        std::copy(far.begin(), far.begin() + at, output.begin());
        return Scene{.output = {kRate, {output}}, .far = {kRate, {far}}, .input = {kRate, {far}}};
      },
      {{"erle", (first + second) / 2, 1e-3}, {"convergence", 0.02, 1e-9}}};
}

}  // namespace

std::vector<Control> ShortestControls() {
  std::vector<Control> controls;
  for (const double seconds : {0.2, 0.4, 0.5, 0.6, 1.0, 3.0, 4.0, 6.0}) {
    AddCopies(seconds, controls);
  }
  std::erase_if(controls, [](const Control& each) { return each.expected.empty(); });
  controls.push_back(RoundedDown("noise_floor", 1600));
  controls.push_back(RoundedDown("loudness", 3201));
  controls.push_back(RoundedDown("loudness_range", 24011));
  controls.push_back(Echo());
  controls.push_back(TwoWindows());
  controls.push_back(NothingInCommon());
  return controls;
}

}  // namespace host
