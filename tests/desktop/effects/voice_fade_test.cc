#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "engine_api/effects/voice_changer.h"
#include "support/signals.h"
#include "support/tone.h"
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

// A tone that an effect takes out comes back as it is switched off: over 20 ms, which is neither a
// click nor a swell.
TEST(VoiceFade, Takes20Milliseconds) {
  std::vector<short> tone = Tone(7000, 12000, kRate, kRate);
  const std::unique_ptr<IVoiceChangerToolbox> toolbox(IVoiceChangerToolbox::Create(kRate, 1));
  toolbox->SetVoiceEffectOption(VeoDieFat);
  for (size_t done = 0; done < tone.size(); done += 160) {
    if (done == kRate / 2) toolbox->SetVoiceEffectOption(VeoNone);
    short count = 160;
    toolbox->Process(&tone[done], &count);
  }
  const std::vector<double> sound = ToDoubles(tone);
  const double whole = Rms({&sound[kRate * 3 / 4], 1600});
  // The share that has come back, in the millisecond that begins so many after the switch.
  const auto share = [&](size_t ms) { return Rms({&sound[kRate / 2 + 16 * ms], 16}) / whole; };
  EXPECT_LT(share(0), 0.05);
  for (size_t ms = 0; ms < 20; ++ms) {
    const double phase = (static_cast<double>(ms) + 0.5) / 20;
    EXPECT_NEAR(share(ms), 0.5 - 0.5 * std::cos(std::numbers::pi * phase), 0.06) << ms;
  }
}

// What goes in is compared with what comes of it, not with what comes out meanwhile: else a loud
// word after quiet ones would come out as a blast.
TEST(VoiceFade, MakesNoBlastOfALoudWordAfterQuietOnes) {
  std::vector<short> note = SungNote(220, kRate, 3);
  for (size_t i = 0; i < kRate * 3 / 2; ++i) note[i] = static_cast<short>(note[i] / 100);
  for (const auto effect : {VeoUncle, VeoLorie, VeoBadBoy}) {
    std::vector<short> out = note;
    const std::unique_ptr<IVoiceChangerToolbox> toolbox(IVoiceChangerToolbox::Create(kRate, 1));
    toolbox->SetVoiceEffectOption(effect);
    for (size_t done = 0; done < out.size(); done += 160) {
      short count = 160;
      toolbox->Process(&out[done], &count);
    }
    const std::vector<double> sound = ToDoubles(out);
    const double usual = Rms({&sound[kRate * 5 / 2], kRate / 2});
    for (size_t at = kRate * 3 / 2; at < kRate * 5 / 2; at += 160) {
      EXPECT_LT(Decibels(Rms({&sound[at], 640}) / usual), 2) << effect << ", " << at;
    }
  }
}

}  // namespace
