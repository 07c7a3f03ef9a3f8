#include "selftest/run_controls.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace host {

namespace {

using audio_measures::NamedFigure;

std::vector<std::span<const float>> Views(const ControlSound& sound) {
  return {sound.channels.begin(), sound.channels.end()};
}

Outcome Judged(const Control& control, const Expected& expected, const NamedFigure& figure) {
  Outcome outcome = {.control = &control,
                     .expected = expected,
                     .value = figure.figure.value,
                     .reason = figure.figure.reason};
  if (!expected.reason.empty()) {
    outcome.holds = !outcome.value && outcome.reason == expected.reason;
  } else if (outcome.value && std::isfinite(*outcome.value)) {
    outcome.deviation = std::abs(*outcome.value - expected.value) / expected.tolerance;
    outcome.holds = outcome.deviation <= 1;
  }
  return outcome;
}

bool IsWorse(const Outcome& a, const Outcome& b) {
  return a.holds != b.holds ? !a.holds : a.deviation > b.deviation;
}

// Of the figures that the expectation is about, the worst.
Outcome Worst(const Control& control, const Expected& expected,
              std::span<const NamedFigure> figures) {
  Outcome worst = {.control = &control, .expected = expected, .reason = "no such figure"};
  bool any = false;
  for (const NamedFigure& figure : figures) {
    if (figure.name != expected.measure) continue;
    if (expected.channel && figure.channel != expected.channel) continue;
    if (expected.ofAll && figure.channel) continue;
    Outcome outcome = Judged(control, expected, figure);
    if (!any || IsWorse(outcome, worst)) worst = std::move(outcome);
    any = true;
  }
  return worst;
}

bool Contains(std::span<const std::string_view> names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

void Run(const Control& control, std::span<const std::string_view> measures,
         std::vector<Outcome>& outcomes) {
  std::vector<std::string_view> names;
  for (const Expected& each : control.expected) {
    if (Contains(measures, each.measure) && !Contains(names, each.measure)) {
      names.push_back(each.measure);
    }
  }
  if (names.empty()) return;
  const Scene scene = control.make();
  const std::vector<NamedFigure> figures = audio_measures::Compute(scene.Inputs(), names);
  for (const Expected& each : control.expected) {
    if (Contains(names, each.measure)) outcomes.push_back(Worst(control, each, figures));
  }
}

}  // namespace

audio_measures::Inputs Scene::Inputs() const {
  audio_measures::Inputs inputs = {.output = {output.rate, Views(output)},
                                   .reference = {reference.rate, Views(reference)},
                                   .far = {far.rate, Views(far)},
                                   .near = {near.rate, Views(near)},
                                   .input = {input.rate, Views(input)},
                                   .fullScale = fullScale,
                                   .searchSeconds = searchSeconds,
                                   .codedBytes = codedBytes,
                                   .codedFrames = codedFrames};
  if (beats) inputs.beats = *beats;
  if (trueBeats) inputs.trueBeats = *trueBeats;
  return inputs;
}

const std::vector<Control>& AllControls() {
  static const std::vector<Control> all = [] {
    std::vector<Control> controls;
    for (const auto part :
         {LevelControls,           SpeechLevelControls, BandwidthControls, TruePeakControls,
          WeightingControls,       LoudnessControls,    AlignmentControls, DelayControls,
          ReferenceControls,       SpectralControls,    CepstralControls,  ShortSpectraControls,
          IntelligibilityControls, EnhancementControls, MusicalControls,   EchoControls,
          CodecControls,           TimeControls,        PitchControls,     TempoControls,
          RhythmControls,          InputControls,       OverlapControls,   TrackControls,
          ShortestControls,        NeedsControls}) {
      std::ranges::move(part(), std::back_inserter(controls));
    }
    std::ranges::move(ChannelControls(controls), std::back_inserter(controls));
    return controls;
  }();
  return all;
}

std::vector<Outcome> RunControls(std::span<const std::string_view> measures) {
  return RunControls(AllControls(), measures);
}

std::vector<Outcome> RunControls(std::span<const Control> controls,
                                 std::span<const std::string_view> measures) {
  std::vector<Outcome> outcomes;
  for (const Control& control : controls) Run(control, measures, outcomes);
  return outcomes;
}

bool HasControls(std::string_view measure) {
  return std::ranges::any_of(AllControls(), [&](const Control& control) {
    return std::ranges::any_of(control.expected,
                               [&](const Expected& each) { return each.measure == measure; });
  });
}

bool AllHold(std::span<const Outcome> outcomes, std::string_view measure) {
  bool any = false;
  for (const Outcome& outcome : outcomes) {
    if (outcome.expected.measure != measure) continue;
    if (!outcome.holds) return false;
    any = true;
  }
  return any;
}

}  // namespace host
