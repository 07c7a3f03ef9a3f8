#include <limits>

#include "audio_measures/measure.h"
#include "selftest/control.h"

namespace host {

namespace {

using audio_measures::Measure;

// All that a measure can need, of white noise.
Scene Everything(int rate, size_t frames) {
  const Samples noise = WhiteNoise(frames, 0.1, 91);
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

bool NeedsSignals(const Measure& measure) {
  using namespace audio_measures;
  return (measure.needs & (kReference | kFar | kNear | kInput)) != 0;
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
                      "What is measured against a signal needs it.",
                      [] {
                        Scene scene = Everything(16000, 160000);
                        scene.reference = scene.far = scene.near = scene.input = {};
                        return scene;
                      },
                      {{.measure = "snr", .reason = "no reference"},
                       {.measure = "pitch_cents", .reason = "no reference"},
                       {.measure = "erle", .reason = "no far end"},
                       {.measure = "near_sdr", .reason = "no far end"},
                       {.measure = "band_limit", .reason = "no input"},
                       {.measure = "length_factor", .reason = "no input"}}});
  controls.push_back({"signals of another rate", "They are not what the output is compared with.",
                      [] {
                        Scene scene = Everything(16000, 160000);
                        for (ControlSound* const each :
                             {&scene.reference, &scene.far, &scene.near, &scene.input}) {
                          each->rate = 48000;
                          each->channels.front().resize(480000);
                        }
                        return scene;
                      },
                      ReasonFor(audio_measures::kOtherRate, NeedsSignals)});
  return controls;
}

// What makes no figure of a signal whose samples are all of this value.
Control Filled(const std::string& name, const std::string& theory, float value,
               const std::string& reason, const std::vector<std::string_view>& without) {
  std::vector<Expected> expected;
  for (const std::string_view each : without) {
    expected.push_back({.measure = each, .reason = reason});
  }
  return {name, theory,
          [value] {
            Scene scene = Everything(16000, 160000);
            if (value == 0) {
              std::fill(scene.output.channels[0].begin(), scene.output.channels[0].end(), 0.0F);
            } else {
              scene.output.channels[0][80000] = value;
            }
            return scene;
          },
          std::move(expected)};
}

}  // namespace

std::vector<Control> InputControls() {
  std::vector<Control> controls = Faults();
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
                            std::numeric_limits<float>::quiet_NaN(), audio_measures::kNotFinite,
                            ofFinite));
  controls.push_back(Filled("one infinite sample", "No sum with it is a figure.",
                            std::numeric_limits<float>::infinity(), audio_measures::kNotFinite,
                            ofFinite));
  controls.push_back(
      Filled("silence", "There is no logarithm of 0 and no place where nothing is.", 0,
             audio_measures::kSilence,
             {"peak", "true_peak", "rms", "active_level", "crest", "bandwidth", "bandwidth_40db",
              "noise_floor", "delay", "gain", "polarity", "snr", "si_sdr", "stoi", "codec_delay",
              "band_limit", "tempo", "pitch_cents"}));
  return controls;
}

}  // namespace host
