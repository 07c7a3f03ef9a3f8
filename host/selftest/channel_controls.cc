#include <algorithm>
#include <span>
#include <stdexcept>
#include <utility>

#include "selftest/control.h"

namespace host {

namespace {

// Two of the controls of one channel, of one rate and length.
struct Pair {
  const char* first;
  const char* second;
  bool mean = true;    // The measures have a figure of all channels, too.
  bool apart = false;  // The second channel begins when the first one has ended.
};

constexpr Pair kPairs[] = {
    {.first = "one sample of -0.800000 at place 0 of 4800",
     .second = "one sample of 0.800000 at place 4799 of 4800",
     .mean = false},
    {.first = "a tone 19 dB below another", .second = "a tone 21 dB below another", .mean = false},
    {.first = "syllables of noise at gain 0.010000 and 8002 Hz",
     .second = "syllables of noise at gain 1.000000 and 8002 Hz",
     .mean = false},
    {.first = "delay of 37.000000 samples, gain 1.000000",
     .second = "delay of 12.500000 samples, gain -0.250000"},
    {.first = "pieces of 2 s at 0.000000 1.000000 3.000000 3.000000 samples",
     .second = "pieces of 2 s at 0.000000 1.000000 1.000000 3.000000 samples"},
    {.first = "white noise of RMS 0.100000 at an SNR of 10.000000 dB",
     .second = "white noise of RMS 0.100000 at an SNR of 20.000000 dB",
     .apart = true},
    {.first = "single samples and 0.500000 of each three samples later",
     .second = "single samples and -0.300000 of each three samples later"},
    {.first = "single samples through a pole of 0.500000 at 1 samples, at 16000 Hz",
     .second = "single samples through a pole of -0.700000 at 1 samples, at 16000 Hz",
     .apart = true},
    {.first = "a band 6 dB softer", .second = "bands apart in both directions", .apart = true},
    {.first = "envelopes 30 degrees apart", .second = "envelopes 60 degrees apart", .apart = true},
    {.first = "speech at gain 0.8, noise softer by a known gain in each block",
     .second = "speech without any of its noise"},
    {.first = "noise whose second half is at gain 0.100000",
     .second = "noise whose second half is at gain 0.700000"},
    {.first = "an echo 26 dB down throughout",
     .second = "an echo 10 dB down for 1 s, then 30 dB",
     .apart = true},
    {.first = "an echo 26 dB down, with speech at the microphone most of the time",
     .second = "an echo 26 dB down, with speech at the microphone most of the time",
     .apart = true},
    {.first = "double talk with an echo 15.000000 dB below, gain 1.000000, 0 samples later",
     .second = "double talk with an echo 30.000000 dB below, gain 2.000000, 0 samples later",
     .apart = true},
    {.first = "a decoder 312.000000 samples late",
     .second = "a decoder -7.500000 samples late",
     .apart = true},
    {.first = "a copy of what has an upper band 71.000000 dB below the lower one",
     .second = "a codec whose upper band is 23.000000 dB softer",
     .apart = true},
    {.first = "a voice of 220.000000 Hz, 0.000000 cents higher, at 16000 Hz",
     .second = "a voice of 220.000000 Hz, 700.000000 cents higher, at 16000 Hz",
     .apart = true},
    {.first = "1 s with 10 blocks of speech at gain 0.8, its noise at gain 0.1",
     .second = "1 s with 31 blocks of speech at gain 0.8, its noise at gain 0.1",
     .apart = true},
    {.first = "1 s with 9 blocks of speech at gain 0.8, its noise at gain 0.1",
     .second = "1 s with 30 blocks of speech at gain 0.8, its noise at gain 0.1",
     .apart = true}};

const Control& Named(std::span<const Control> controls, const char* name) {
  const auto found = std::ranges::find(controls, name, &Control::name);
  if (found == controls.end()) throw std::logic_error(std::string("no control: ") + name);
  return *found;
}

constexpr ControlSound Scene::*kSounds[] = {&Scene::output, &Scene::reference, &Scene::far,
                                            &Scene::near, &Scene::input};

// Puts the channels of `other` behind those of the scene. Apart, each is silent while the other is
// heard, so that what is taken from the wrong channel is silence.
Scene Beside(Scene scene, const Scene& other, bool apart) {
  for (ControlSound Scene::*const sound : kSounds) {
    for (Waveform& channel : (scene.*sound).channels) {
      if (apart) channel.resize(2 * channel.size());
    }
    for (Waveform channel : (other.*sound).channels) {
      if (apart) channel.insert(channel.begin(), channel.size(), 0.0F);
      (scene.*sound).channels.push_back(std::move(channel));
    }
  }
  return scene;
}

// What both controls expect a value of: of each channel its own, and their mean.
std::vector<Expected> OfChannels(const Control& first, const Control& second, bool mean) {
  std::vector<Expected> expected;
  for (Expected one : first.expected) {
    const auto other = std::ranges::find(second.expected, one.measure, &Expected::measure);
    if (other == second.expected.end() || !one.reason.empty() || !other->reason.empty()) continue;
    Expected two = *other;
    if (mean) {
      expected.push_back({.measure = one.measure,
                          .value = (one.value + two.value) / 2,
                          .tolerance = (one.tolerance + two.tolerance) / 2,
                          .ofAll = true});
    }
    one.channel = 0;
    two.channel = 1;
    expected.push_back(one);
    expected.push_back(two);
  }
  return expected;
}

}  // namespace

std::vector<Control> ChannelControls(std::span<const Control> alone) {
  std::vector<Control> controls;
  for (const Pair& pair : kPairs) {
    const Control& first = Named(alone, pair.first);
    const Control& second = Named(alone, pair.second);
    controls.push_back({"in two channels: " + first.name + ", and " + second.name,
                        "Each channel has the figure that it has alone, and all have their mean.",
                        [one = first.make, two = second.make, apart = pair.apart] {
                          return Beside(one(), two(), apart);
                        },
                        OfChannels(first, second, pair.mean)});
  }
  return controls;
}

}  // namespace host
