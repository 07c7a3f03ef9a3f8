#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/dsp/reverb/reverb.h"

// A reverberation that is switched and set while sound passes.

namespace {

constexpr NreverbFv3Parameter kVoice = {3.6f, -17.7f, 3, 0.8f, 0.6f, 0, 0.2f, 2.1f, 0.6f, 16};

void Play(desktop::Reverb& reverb, std::vector<float>& sound, int rate) {
  float* const rows[] = {sound.data()};
  const desktop::DenormalGuard guard;
  reverb.Process(rows, 1, sound.size(), rate);
}

std::vector<float> Wave(double frequency, size_t frames) {
  std::vector<float> sound(frames);
  for (size_t i = 0; i < frames; ++i) {
    sound[i] =
        static_cast<float>(0.3 * std::cos(2 * M_PI * frequency * static_cast<double>(i) / 44100));
  }
  return sound;
}

float LargestStepOf(const std::vector<float>& sound) {
  float largest = 0;
  for (size_t i = 1; i < sound.size(); ++i) {
    largest = std::max(largest, std::abs(sound[i] - sound[i - 1]));
  }
  return largest;
}

// The dry sound has 3 dB more with the effect: at the crest of a wave that would be a step of 0.12.
TEST(Reverb, SwitchesWithoutAClick) {
  desktop::Reverb reverb;
  reverb.SetParameter(kVoice);
  std::vector<float> out;
  const std::vector<float> steady = Wave(100, 4410);
  for (int turn = 0; turn < 6; ++turn) {
    reverb.SetEnabled(turn % 2 == 1);
    std::vector<float> part = steady;
    Play(reverb, part, 44100);
    out.insert(out.end(), part.begin(), part.end());
  }
  EXPECT_LT(LargestStepOf(out), 3 * LargestStepOf(steady));
  // Off again it changes no bit once it is faded out.
  std::vector<float> part = steady;
  reverb.SetEnabled(false);
  Play(reverb, part, 44100);
  part = steady;
  Play(reverb, part, 44100);
  EXPECT_EQ(part, steady);
}

// What an impulse gives after 50 ms, when the gains of the tail have faded in.
std::vector<float> Tail(desktop::Reverb& reverb) {
  std::vector<float> tail(22050);
  tail[2205] = 1;
  Play(reverb, tail, 44100);
  return tail;
}

TEST(Reverb, TakesWhatIsNewWhileItRuns) {
  desktop::Reverb before;
  before.SetParameter(kVoice);
  before.SetEnabled(true);
  const std::vector<float> tailBefore = Tail(before);
  const std::pair<float NreverbFv3Parameter::*, float> changes[] = {
      {&NreverbFv3Parameter::Factor, 1.5F}, {&NreverbFv3Parameter::Feedback, 0.4F},
      {&NreverbFv3Parameter::Damp1, 0.2F},  {&NreverbFv3Parameter::Damp2, 0.5F},
      {&NreverbFv3Parameter::Damp3, 0.6F},  {&NreverbFv3Parameter::ReverbTime, 5},
      {&NreverbFv3Parameter::Delay, 30}};
  for (const auto& [field, value] : changes) {
    desktop::Reverb changed;
    changed.SetParameter(kVoice);
    changed.SetEnabled(true);
    std::vector<float> sound = Wave(300, 4410);
    Play(changed, sound, 44100);
    NreverbFv3Parameter parameter = kVoice;
    parameter.*field = value;
    changed.SetParameter(parameter);
    desktop::Reverb fresh;
    fresh.SetParameter(parameter);
    fresh.SetEnabled(true);
    const std::vector<float> tail = Tail(changed);
    const std::vector<float> wanted = Tail(fresh);
    for (size_t i = 0; i < tail.size(); ++i) ASSERT_NEAR(tail[i], wanted[i], 1e-5) << value << i;
    EXPECT_NE(wanted, tailBefore) << value;
  }
}

TEST(Reverb, BringsNoOldTailBack) {
  desktop::Reverb reverb;
  reverb.SetParameter(kVoice);
  reverb.SetEnabled(true);
  std::vector<float> sound = Wave(300, 44100);
  Play(reverb, sound, 44100);
  reverb.SetEnabled(false);
  const std::vector<float> silence(4410);
  for (const bool enabled : {false, false, true}) {
    reverb.SetEnabled(enabled);
    sound = silence;
    Play(reverb, sound, 44100);
  }
  EXPECT_EQ(sound, silence);
}

}  // namespace
