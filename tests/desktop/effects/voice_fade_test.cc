#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "engine_api/effects/voice_changer.h"
#include "support/signals.h"
#include "support/voice.h"

// A shifter of pitch that repeats or leaves out long stretches makes stairs of what fades.

namespace {

constexpr int kRate = 16000;
constexpr double kFade = 100;  // dB a second.

// A note that is held for 0.6 s and then fades.
std::vector<short> FadingNote(double pitch) {
  std::vector<short> note = SungNote(pitch, kRate, 1.2);
  for (size_t i = 0; i < note.size(); ++i) {
    const double seconds = static_cast<double>(i) / kRate - 0.6;
    const double gain = std::pow(10, -kFade / 20 * std::max(seconds, 0.0));
    note[i] = static_cast<short>(std::lround(gain * note[i]));
  }
  return note;
}

// How far the level of the changed note strays from the straight line that fits it best while it
// fades, in dB (root mean square).
double Stairs(VoiceEffectOption effect, double pitch) {
  std::vector<short> note = FadingNote(pitch);
  const std::unique_ptr<IVoiceChangerToolbox> toolbox(IVoiceChangerToolbox::Create(kRate, 1));
  toolbox->SetVoiceEffectOption(effect);
  for (size_t done = 0; done < note.size(); done += 160) {
    short count = 160;
    toolbox->Process(&note[done], &count);
  }
  const std::vector<double> sound = ToDoubles(note);
  constexpr size_t kStretch = kRate / 200;  // 5 ms.
  std::vector<double> levels;
  for (size_t at = kRate * 3 / 4; at + kStretch <= kRate * 23 / 20; at += kStretch) {
    levels.push_back(Decibels(Rms({&sound[at], kStretch})));
  }
  const auto count = static_cast<double>(levels.size());
  double mean = 0, slope = 0, squares = 0;
  for (const double level : levels) mean += level / count;
  const auto place = [&](size_t i) { return static_cast<double>(i) - (count - 1) / 2; };
  for (size_t i = 0; i < levels.size(); ++i) {
    slope += levels[i] * place(i);
    squares += place(i) * place(i);
  }
  slope /= squares;
  EXPECT_NEAR(slope, -kFade / 200, kFade / 2000);
  double away = 0;
  for (size_t i = 0; i < levels.size(); ++i) {
    away += std::pow(levels[i] - mean - slope * place(i), 2) / count;
  }
  return std::sqrt(away);
}

TEST(VoiceFade, IsNotBrokenIntoStairs) {
  for (const double pitch : {120.0, 160.0, 220.0, 300.0}) {
    EXPECT_LT(Stairs(VeoLorie, pitch), 0.6) << pitch;
  }
}

// An effect whose sound comes later than that of the old one is waited for.
TEST(VoiceFade, LeavesNoGapWhereAnEffectComesIn) {
  std::vector<short> note = SungNote(220, kRate, 1);
  const std::unique_ptr<IVoiceChangerToolbox> toolbox(IVoiceChangerToolbox::Create(kRate, 1));
  for (size_t done = 0; done < note.size(); done += 160) {
    if (done == kRate / 2) toolbox->SetVoiceEffectOption(VeoUncle);
    short count = 160;
    toolbox->Process(&note[done], &count);
  }
  const std::vector<double> sound = ToDoubles(note);
  const double before = Rms({&sound[kRate / 4], kRate / 4});
  for (size_t at = kRate / 2; at + 320 <= sound.size(); at += 80) {
    EXPECT_GT(Decibels(Rms({&sound[at], 320}) / before), -10) << at;
  }
}

}  // namespace
