#include <cmath>
#include <limits>

#include "audio_measures/measure.h"
#include "selftest/control.h"

namespace host {

namespace {

using audio_measures::Measure;

// All that a measure can need, of white noise.
Scene Everything(int rate, size_t frames) {
  const Waveform noise = WhiteNoise(frames, 0.1, 91);
  const ControlSound sound = {rate, {noise}};
  return {.output = sound,
          .reference = sound,
          .far = sound,
          .near = sound,
          .input = sound,
          .codedBytes = 100,
          .codedFrames = 1,
          .beats = std::vector<double>{6},
          .trueBeats = std::vector<double>{6}};
}

bool Computed(const Measure& measure) { return measure.version > 0; }

std::vector<Expected> ReasonFor(const std::string& reason, bool (*applies)(const Measure&)) {
  std::vector<Expected> expected;
  for (const Measure& measure : audio_measures::AllMeasures()) {
    if (Computed(measure) && applies(measure)) {
      expected.push_back({.measure = measure.name, .reason = reason});
    }
  }
  return expected;
}

// The levels that are defined from 100 Hz on.
std::vector<Control> LowRates() {
  std::vector<Expected> below;
  for (const char* const each :
       {"peak", "true_peak", "rms", "active_level", "activity", "dc", "crest", "clipped"}) {
    below.push_back({.measure = each, .reason = audio_measures::kWrongRate});
  }
  std::vector<Control> controls;
  controls.push_back({"a rate of 99 Hz", "It is too low even for a level.",
                      [] { return Everything(99, 2000); }, below});
  controls.push_back({"a rate of 100 Hz",
                      "The level of a square wave is its magnitude. Speech is active from when the "
                      "envelope has risen, 20 ms after the start of 20 s.",
                      [] {
                        Waveform square(2000, 0.25F);
                        for (size_t i = 0; i < square.size(); i += 2) square[i] = -0.25F;
                        return Scene{.output = {100, {square}}, .fullScale = 0.25F};
                      },
                      {{"peak", 20 * std::log10(0.25), 1e-4},
                       {"rms", 20 * std::log10(0.25), 1e-4},
                       {"crest", 0, 1e-4},
                       {"dc", 0, 1e-9},
                       {"clipped", 0, 1e-9},
                       {"active_level", 20 * std::log10(0.25), 0.02},
                       {"activity", 1, 0.005}}});
  return controls;
}

std::vector<Control> Faults() {
  std::vector<Control> controls;
  controls.push_back({"an output of no samples", "There is nothing to measure.",
                      [] { return Everything(16000, 0); },
                      ReasonFor(audio_measures::kNoSamples, Computed)});
  controls.push_back({"one sample", "What takes some time is not to be had of one sample.",
                      [] { return Everything(16000, 1); },
                      ReasonFor(audio_measures::kTooShort,
                                [](const Measure& each) { return each.leastSeconds > 0; })});
  controls.push_back({"a rate of 4 kHz", "Below 8 kHz hardly anything is defined.",
                      [] { return Everything(4000, 40000); },
                      ReasonFor(audio_measures::kWrongRate,
                                [](const Measure& each) { return each.lowestRate > 4000; })});
  controls.push_back({"a rate of 384 kHz", "Nothing is defined above 192 kHz.",
                      [] { return Everything(384000, 4000); },
                      ReasonFor(audio_measures::kWrongRate, Computed)});
  controls.push_back({"nothing but the output",
                      "What is measured against a signal or a list needs it.",
                      [] { return Scene{.output = Everything(16000, 160000).output}; },
                      {{.measure = "snr", .reason = "no reference"},
                       {.measure = "pitch_cents", .reason = "no reference"},
                       {.measure = "erle", .reason = "no far end"},
                       {.measure = "near_sdr", .reason = "no far end"},
                       {.measure = "band_limit", .reason = "no input"},
                       {.measure = "length_factor", .reason = "no input"},
                       {.measure = "bit_rate", .reason = "no coded stream"},
                       {.measure = "frames", .reason = "no count of coded frames"},
                       {.measure = "beat_f", .reason = "no lists of beats"}}});
  return controls;
}

// What makes no figure of a signal whose samples are all of this value.
Control Filled(const std::string& name, const std::string& theory, float value, size_t place,
               const std::string& reason, const std::vector<std::string_view>& without) {
  std::vector<Expected> expected;
  for (const std::string_view each : without) {
    expected.push_back({.measure = each, .reason = reason});
  }
  return {name, theory,
          [=] {
            Scene scene = Everything(16000, 160100);
            if (value == 0) {
              std::fill(scene.output.channels[0].begin(), scene.output.channels[0].end(), 0.0F);
            } else {
              scene.output.channels[0][place] = value;
            }
            return scene;
          },
          std::move(expected)};
}

}  // namespace

std::vector<Control> InputControls() {
  std::vector<Control> controls = Faults();
  for (Control& each : LowRates()) controls.push_back(std::move(each));
  const std::vector<std::string_view> ofFinite = {"peak",
                                                  "true_peak",
                                                  "rms",
                                                  "loudness",
                                                  "loudness_range",
                                                  "active_level",
                                                  "activity",
                                                  "dc",
                                                  "noise_floor",
                                                  "crest",
                                                  "bandwidth",
                                                  "bandwidth_40db",
                                                  "delay",
                                                  "delay_track",
                                                  "drift",
                                                  "gain",
                                                  "polarity",
                                                  "snr",
                                                  "si_sdr",
                                                  "seg_snr",
                                                  "fw_seg_snr",
                                                  "cepstral_distance",
                                                  "lsd",
                                                  "band_difference",
                                                  "band_difference_worst",
                                                  "stoi",
                                                  "estoi",
                                                  "noise_reduction",
                                                  "speech_retained",
                                                  "delta_snr",
                                                  "musical",
                                                  "erle",
                                                  "convergence",
                                                  "near_sdr",
                                                  "codec_delay",
                                                  "band_limit",
                                                  "length_factor",
                                                  "pitch_cents",
                                                  "tempo"};
  controls.push_back(Filled("one sample that is not a number", "No sum with it is a figure.",
                            std::numeric_limits<float>::quiet_NaN(), 80000,
                            audio_measures::kNotFinite, ofFinite));
  controls.push_back(Filled("one infinite sample", "No sum with it is a figure.",
                            std::numeric_limits<float>::infinity(), 160099,
                            audio_measures::kNotFinite, ofFinite));
  controls.push_back(
      Filled("silence", "There is no logarithm of 0 and no place where nothing is.", 0, 0,
             audio_measures::kSilence,
             {"peak", "true_peak", "rms", "active_level", "crest", "bandwidth", "bandwidth_40db",
              "noise_floor", "delay", "gain", "polarity", "snr", "si_sdr", "stoi", "codec_delay",
              "band_limit", "tempo", "pitch_cents"}));
  return controls;
}

}  // namespace host
