#include "engine_api/effects/voice_beautify.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "desktop/effects/voice/voice_recipe.h"
#include "desktop/effects/voice/voice_stream.h"

namespace {

using desktop::Bass;
using desktop::Peak;
using desktop::Treble;
using desktop::VoiceRecipe;

// Returns the recipe of a mode. s: the strength, above 0.
VoiceRecipe ModeAt(VoiceBeautifyOption mode, double s) {
  VoiceRecipe recipe;
  switch (mode) {
    case mode1:
      recipe.filters = {Bass(250, 6 * s), Treble(3500, -6 * s)};
      break;
    case mode2:
      recipe.filters = {Bass(120, -9 * s), Peak(3000, 0.8, 6 * s), Treble(8000, 6 * s)};
      break;
    case mode3:
      recipe.formants = -2 * s;
      recipe.filters = {Bass(180, 4 * s)};
      break;
    case mode4:
      recipe.formants = 2 * s;
      recipe.filters = {Bass(250, -3 * s), Treble(4000, 4 * s)};
      break;
    case mode5:
      recipe.filters = {Bass(250, 3 * s), Peak(1200, 0.7, -4 * s)};
      recipe.doubleMs = {23, 41};
      recipe.doubleGain = 0.8 * s;
      recipe.levelDb = -3 * s;
      break;
    case mode6:
      recipe.roomSeconds = 1.8;
      recipe.filters = {Treble(5000, 3 * s)};
      recipe.roomDb = -4 - 30 * (1 - s);
      break;
  }
  return recipe;
}

// Returns the recipe of a mode at a strength of 0 to 1, where NaN counts as 0, as it does for the
// semitones, which are clamped to -7..12.
VoiceRecipe RecipeOf(VoiceBeautifyOption mode, double strength, double semitones) {
  const double s = std::isnan(strength) ? 0 : std::clamp(strength, 0.0, 1.0);
  VoiceRecipe recipe = s > 0 ? ModeAt(mode, s) : VoiceRecipe();
  if (std::isnan(semitones)) semitones = 0;
  recipe.semitones = std::clamp(semitones, -7.0, 12.0);
  return recipe;
}

class VoiceBeautify final : public IAudioVoiceBeautify {
 public:
  void Destroy() override { delete this; }

  int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
              int sampleSize) override {
    m_stream.Process<short>(samples, samplesPerChannel, sampleRate, channels, sampleSize);
    return samplesPerChannel;
  }

  int Process(int* samples, int samplesPerChannel, int sampleRate, int channels, int sampleSize,
              int capacity) override {
    if (channels > 0 && samplesPerChannel <= capacity / channels) {
      m_stream.Process<int>(reinterpret_cast<char*>(samples), samplesPerChannel, sampleRate,
                            channels, sampleSize);
    }
    return samplesPerChannel;
  }

  void Flush() override { m_stream.Flush(); }

  bool GetEnabled() override { return m_enabled; }

  void SetEnabled(bool enabled) override {
    m_enabled = enabled;
    Update();
  }

  bool IsActive() override { return m_stream.IsActive(); }

  int VoiceBeautifyProcess(unsigned short* samples, int count, int rate, int channels) override {
    const int frames = channels > 0 ? count / channels : 0;
    m_stream.Process<short>(reinterpret_cast<char*>(samples), frames, rate, channels, 16);
    return count;
  }

  void SetVoiceBeautifyOption(VoiceBeautifyOption option, float strength,
                              float semitones) override {
    m_recipe = RecipeOf(option, strength, semitones);
    Update();
  }

 private:
  void Update() { m_stream.Set(m_enabled ? m_recipe : VoiceRecipe()); }

  bool m_enabled = false;
  VoiceRecipe m_recipe;
  desktop::VoiceStream m_stream{"IAudioVoiceBeautify"};
};

}  // namespace

IAudioVoiceBeautify* IAudioVoiceBeautify::Create() { return new (std::nothrow) VoiceBeautify; }
