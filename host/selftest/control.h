#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "selftest/sounds.h"

namespace host {

// A signal with its samples.
struct ControlSound {
  int rate = 0;  // Hz
  std::vector<Waveform> channels = {};
};

// What a measure is given, with its samples.
struct Scene {
  ControlSound output = {};
  ControlSound reference = {};
  ControlSound far = {};
  ControlSound near = {};
  ControlSound input = {};
  float fullScale = 1;
  double searchSeconds = 0.1;
  std::optional<uint64_t> codedBytes = {};
  std::optional<uint64_t> codedFrames = {};
  std::optional<std::vector<double>> beats = {};
  std::optional<std::vector<double>> trueBeats = {};

  // Views that the scene has to outlive.
  audio_measures::Inputs Inputs() const;
};

// What theory says of a measure: its value to a tolerance, or why it has none. Every figure of the
// measure has to be so, that of each channel and their mean, or where a channel is named that one.
struct Expected {
  std::string_view measure;
  double value = 0;
  double tolerance = 0;
  std::string reason = {};  // Not empty: it has no value, for this reason.
  std::optional<int> channel = {};
  bool ofAll = false;  // Of their mean alone.
};

// An analytic control: a scene that a formula describes, and what follows from the formula. Never
// from what the measures answered.
struct Control {
  std::string name;
  std::string theory;  // Where the values and the tolerances come from, in words.
  std::function<Scene()> make;
  std::vector<Expected> expected;
};

std::vector<Control> LevelControls();
std::vector<Control> SpeechLevelControls();
std::vector<Control> BandwidthControls();
std::vector<Control> TruePeakControls();
std::vector<Control> WeightingControls();
std::vector<Control> LoudnessControls();
std::vector<Control> AlignmentControls();
std::vector<Control> DelayControls();
std::vector<Control> OverlapControls();
std::vector<Control> TrackControls();
std::vector<Control> ReferenceControls();
std::vector<Control> SpectralControls();
std::vector<Control> CepstralControls();
std::vector<Control> ShortSpectraControls();
std::vector<Control> IntelligibilityControls();
std::vector<Control> EnhancementControls();
std::vector<Control> MusicalControls();
std::vector<Control> EchoControls();
std::vector<Control> CodecControls();
std::vector<Control> TimeControls();
std::vector<Control> PitchControls();
std::vector<Control> TempoControls();
std::vector<Control> RhythmControls();
std::vector<Control> InputControls();
std::vector<Control> ShortestControls();
std::vector<Control> NeedsControls();

// Controls that stand alone, two and two of them as the channels of one scene.
std::vector<Control> ChannelControls(std::span<const Control> alone);

// All of them.
const std::vector<Control>& AllControls();

}  // namespace host
