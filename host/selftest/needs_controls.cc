#include <limits>
#include <utility>

#include "audio_measures/measure.h"
#include "selftest/control.h"

namespace host {

namespace {

using audio_measures::Measure;

constexpr int kRate = 8000;
constexpr size_t kFrames = 6 * kRate;  // As long as any measure takes.

// A signal beside the output.
struct Beside {
  const char* name;
  ControlSound Scene::*sound;
  unsigned need;
  const char* missing;
};

constexpr Beside kSignals[] = {
    {"the reference", &Scene::reference, audio_measures::kReference, "no reference"},
    {"the far end", &Scene::far, audio_measures::kFar, "no far end"},
    {"the near end", &Scene::near, audio_measures::kNear, "no near end"},
    {"the input", &Scene::input, audio_measures::kInput, "no input"}};

// All that a measure can need, of white noise.
Scene Everything() {
  const ControlSound sound = {kRate, {WhiteNoise(kFrames, 0.1, 96)}};
  return {.output = sound,
          .reference = sound,
          .far = sound,
          .near = sound,
          .input = sound,
          .searchSeconds = 0.01,
          .beats = std::vector<double>{6},
          .trueBeats = std::vector<double>{6}};
}

// What does without the signal goes on.
std::vector<Expected> OfTheOthers(unsigned signal) {
  if (signal == audio_measures::kReference) {
    return {
        {"length_factor", 1, 1e-12}, {"codec_delay", 0, 0.002 / kRate}, {"near_sdr", 120, 1e-6}};
  }
  return {{"snr", 120, 1e-6}, {"gain", 0, 1e-6}};
}

Control WithFault(const std::string& name, const Beside& beside,
                  const std::function<void(ControlSound&)>& make, std::vector<Expected> expected) {
  return {name + " " + beside.name, "What needs it has no figure; what does not has its own.",
          [=, sound = beside.sound] {
            Scene scene = Everything();
            make(scene.*sound);
            return scene;
          },
          std::move(expected)};
}

bool Needs(const Measure& measure, unsigned signal) { return (measure.needs & signal) != 0; }
// Or makes use of it where it is given.
bool Takes(const Measure& measure, unsigned signal) {
  return ((measure.needs | measure.uses) & signal) != 0;
}
bool TakesSomeTimeOf(const Measure& measure, unsigned signal) {
  return Takes(measure, signal) && measure.leastSeconds > 0;
}

// All that the fault keeps from a figure.
std::vector<Expected> Without(unsigned signal, bool (*applies)(const Measure&, unsigned),
                              const char* reason) {
  std::vector<Expected> expected;
  for (const Measure& measure : audio_measures::AllMeasures()) {
    if (applies(measure, signal)) expected.push_back({.measure = measure.name, .reason = reason});
  }
  return expected;
}

// Where it is noise of its own rate, length and channels otherwise.
std::vector<Control> FaultsOf(const Beside& beside) {
  using namespace audio_measures;
  const unsigned need = beside.need;
  std::vector<Expected> missing = Without(need, Needs, beside.missing);
  for (const Expected& each : OfTheOthers(need)) missing.push_back(each);
  return {WithFault(
              "without", beside, [](ControlSound& sound) { sound = {}; }, std::move(missing)),
          WithFault(
              "at another rate,", beside,
              [](ControlSound& sound) {
                sound.rate = 2 * kRate;
                sound.channels[0].resize(2 * kFrames);
              },
              Without(need, Takes, kOtherRate)),
          WithFault(
              "at 7 kHz,", beside, [](ControlSound& sound) { sound.rate = 7000; },
              Without(need, Takes, kWrongRate)),
          WithFault(
              "a tenth of a second of", beside,
              [](ControlSound& sound) { sound.channels[0].resize(kRate / 10); },
              Without(need, TakesSomeTimeOf, kTooShort)),
          WithFault(
              "two channels of", beside,
              [](ControlSound& sound) { sound.channels.push_back(sound.channels[0]); },
              Without(need, Takes, kOtherChannels)),
          WithFault(
              "one sample that is not a number in", beside,
              [](ControlSound& sound) {
                sound.channels[0].back() = std::numeric_limits<float>::quiet_NaN();
              },
              Without(need, Takes, kNotFinite))};
}

Control OneList(bool found) {
  return {found ? "beats that are found, and none that there are"
                : "beats that there are, and none that are found",
          "It takes both.",
          [found] {
            Scene scene = Everything();
            (found ? scene.trueBeats : scene.beats).reset();
            return scene;
          },
          {{.measure = "beat_f", .reason = "no lists of beats"}}};
}

}  // namespace

std::vector<Control> NeedsControls() {
  std::vector<Control> controls = {OneList(true), OneList(false)};
  for (const Beside& beside : kSignals) {
    for (Control& each : FaultsOf(beside)) controls.push_back(std::move(each));
  }
  return controls;
}

}  // namespace host
