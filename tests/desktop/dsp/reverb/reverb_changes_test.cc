#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

TEST(Reverb, TakesANewReverbTimeWhileItRuns) {
  NreverbFv3Parameter parameter = kVoice;
  desktop::Reverb changed;
  changed.SetParameter(parameter);
  changed.SetEnabled(true);
  std::vector<float> sound = Wave(300, 44100);
  Play(changed, sound, 44100);
  parameter.ReverbTime = 5;
  changed.SetParameter(parameter);
  desktop::Reverb fresh;
  fresh.SetParameter(parameter);
  fresh.SetEnabled(true);
  // The gains of the tail have faded by then.
  std::vector<float> tails[2] = {std::vector<float>(44100), std::vector<float>(44100)};
  tails[0][2205] = tails[1][2205] = 1;
  Play(changed, tails[0], 44100);
  Play(fresh, tails[1], 44100);
  for (size_t i = 0; i < 44100; ++i) ASSERT_NEAR(tails[0][i], tails[1][i], 1e-5) << i;
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
