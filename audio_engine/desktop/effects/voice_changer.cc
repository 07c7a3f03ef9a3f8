#include "engine_api/effects/voice_changer.h"

#include <new>

#include "desktop/effects/voice/voice_recipe.h"
#include "desktop/effects/voice/voice_stream.h"

namespace {

using desktop::Bass;
using desktop::HighPass;
using desktop::LowPass;
using desktop::Peak;
using desktop::Treble;
using desktop::VoiceRecipe;

// What each option does, as the enumerator says; an unknown one changes nothing.
VoiceRecipe RecipeOf(VoiceEffectOption effect) {
  switch (effect) {
    case VeoEthereal:
      return {.filters = {HighPass(350), HighPass(350), Treble(4000, 6)},
              .roomSeconds = 2.5,
              .roomDb = -3};
    case VeoThriller:
      return {.semitones = -2,
              .filters = {LowPass(2200)},
              .tremoloHz = 6,
              .tremoloDepth = 0.6,
              .echoMs = 190,
              .echoGain = 0.35};
    case VeoLuBan:
      return {.semitones = 4, .filters = {HighPass(300), LowPass(4500), Peak(1600, 1, 6)}};
    case VeoLorie:
      return {.semitones = 9, .filters = {HighPass(200), Treble(4000, 3)}};
    case VeoUncle:
      return {.semitones = -3, .filters = {Bass(220, 4), Treble(4000, -4)}};
    case VeoDieFat:
      return {.semitones = -5, .filters = {Bass(200, 3), LowPass(1300)}};
    case VeoBadBoy:
      return {.semitones = 6, .filters = {HighPass(250), Peak(2800, 1.2, 9)}};
    case VeoWarCraft:
      return {.semitones = -7, .filters = {Bass(160, 4)}, .drive = 3, .levelDb = -4};
    case VeoHeavyMetal:
      return {.filters = {HighPass(150), Peak(1500, 0.8, 6)}, .drive = 12, .levelDb = -8};
    case VeoCold:
      return {.semitones = -1,
              .filters = {HighPass(180), Peak(450, 1.5, 6), Peak(1700, 0.8, -12), LowPass(2600)}};
    case VeoHeavyMechinery:
      return {.semitones = -4,
              .filters = {HighPass(150), Peak(2600, 1.5, 10)},
              .ringMs = 7,
              .ringGain = 0.7,
              .tremoloHz = 38,
              .tremoloDepth = 0.5};
    case VeoTrappedBeast:
      return {.semitones = -6,
              .filters = {Bass(250, 3), LowPass(3000)},
              .drive = 2,
              .tremoloHz = 24,
              .tremoloDepth = 0.6,
              .roomSeconds = 1.6,
              .roomDb = -9};
    case VeoPowerCurrent:
      return {.filters = {HighPass(600), Peak(2500, 1, 5)},
              .tremoloHz = 12.5,
              .tremoloDepth = 0.85,
              .tremoloChops = true,
              .levelDb = 4};
    case VeoNone:
      break;
  }
  return {};
}

class VoiceChanger final : public IVoiceChangerToolbox {
 public:
  VoiceChanger(int rate, int channels) : m_rate(rate), m_channels(channels) {}

  int Process(short* samples, short* count) override {
    if (count == nullptr) return 0;
    const int frames = m_channels > 0 ? *count / m_channels : 0;
    m_stream.Process<short>(reinterpret_cast<char*>(samples), frames, m_rate, m_channels, 16);
    return *count;
  }

  void SetVoiceEffectOption(VoiceEffectOption option) override { m_stream.Set(RecipeOf(option)); }

 private:
  const int m_rate;
  const int m_channels;
  desktop::VoiceStream m_stream{"IVoiceChangerToolbox"};
};

}  // namespace

IVoiceChangerToolbox* IVoiceChangerToolbox::Create(int rate, int channels) {
  return new (std::nothrow) VoiceChanger(rate, channels);
}
