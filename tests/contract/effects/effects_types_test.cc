// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <cstdint>
#include <type_traits>

#include "engine_api/effects/audio_accelerate.h"
#include "engine_api/effects/audio_dsp_processor.h"
#include "engine_api/effects/audio_effect_module.h"
#include "engine_api/effects/audio_karaoke_effect_module.h"
#include "engine_api/effects/audio_resampler_ex.h"
#include "engine_api/effects/beat_track.h"
#include "engine_api/effects/drc.h"
#include "engine_api/effects/equalizer.h"
#include "engine_api/effects/fir_filter.h"
#include "engine_api/effects/mit_hrtf.h"
#include "engine_api/effects/rate_changer.h"
#include "engine_api/effects/sound_process.h"
#include "engine_api/effects/voice_beautify.h"
#include "engine_api/effects/voice_changer.h"
#include "support/slot.h"

using zuwebrtc::FIRFilter;

static_assert(std::is_same_v<decltype(mit_hrtf_availability),
                             unsigned int(int, int, unsigned int, unsigned int)>);

static_assert(std::is_same_v<decltype(mit_hrtf_get),
                             unsigned int(int*, int*, unsigned int, unsigned int, short*, short*)>);

static_assert(std::has_virtual_destructor_v<FIRFilter> && std::is_abstract_v<FIRFilter>);

static_assert(std::is_same_v<decltype(&FIRFilter::Filter),
                             void (FIRFilter::*)(const float*, size_t, float*)>);

static_assert(std::is_same_v<decltype(&FIRFilter::UpdateCoeffients),
                             void (FIRFilter::*)(const float*, size_t)>);

static_assert(
    std::is_same_v<decltype(FIRFilter::Create), FIRFilter*(const float*, size_t, size_t)>);

// Initialisers with names have to keep the order of the fields; only floats are that small.
static_assert(sizeof(NreverbFv3Parameter{.Factor = 0.5F,
                                         .Wet = 0.5F,
                                         .Dry = 0.5F,
                                         .Feedback = 0.5F,
                                         .Damp1 = 0.5F,
                                         .Damp2 = 0.5F,
                                         .Damp3 = 0.5F,
                                         .ReverbTime = 0.5F,
                                         .Width = 0.5F,
                                         .Delay = 0.5F}) == 10 * sizeof(float));

static_assert(sizeof(LimiterParam{.fCeiling = 0.5F,
                                  .fThreshold = 0.5F,
                                  .fPreGain = 0.5F,
                                  .fRelease = 0.5F,
                                  .fAttack = 0.5F,
                                  .fLookahead = 0.5F,
                                  .fLookaheadRatio = 0.5F,
                                  .fRMS = 0.5F,
                                  .fStLink = 0.5F}) == 9 * sizeof(float));

static_assert(sizeof(LimiterParameter{.fCeiling = 0.5F,
                                      .fThreshold = 0.5F,
                                      .fPreGain = 0.5F,
                                      .fRelease = 0.5F,
                                      .fAttack = 0.5F,
                                      .fLookahead = 0.5F,
                                      .fLookaheadRatio = 0.5F,
                                      .fRMS = 0.5F,
                                      .fFactor = 0.5F,
                                      .fStLink = 0.5F,
                                      .fType = 0.5F}) == 11 * sizeof(float));

static_assert(std::is_same_v<EqGains, float[11]>);

static_assert(std::is_same_v<decltype(&AudioEffectModule::Process),
                             uint32_t (AudioEffectModule::*)(zuwebrtc::AudioFrame&)>);

static_assert(std::is_same_v<decltype(&AudioKaraokeEffectModule::Process),
                             uint32_t (AudioKaraokeEffectModule::*)(zuwebrtc::AudioFrame&)>);

static_assert(std::is_same_v<decltype(&AudioKaraokeEffectModule::SetReverbFv3Param),
                             void (AudioKaraokeEffectModule::*)(NreverbFv3Parameter)>);

static_assert(std::is_same_v<decltype(&AudioKaraokeEffectModule::SetLimiterParameter),
                             void (AudioKaraokeEffectModule::*)(LimiterParameter)>);

static_assert(std::is_same_v<decltype(&CAudioDspProcessor::Process),
                             int (CAudioDspProcessor::*)(char*, int, int, int, int)>);

static_assert(std::is_same_v<decltype(&Drc::Process), void (Drc::*)(short*, int, int)>);

static_assert(std::is_same_v<decltype(IAudioResamplerEx::Create),
                             IAudioResamplerEx*(uint32_t, uint32_t, uint32_t, uint32_t, uint32_t,
                                                uint32_t, const char*)>);

static_assert(std::is_same_v<decltype(IAudioResamplerEx::Destroy), void(IAudioResamplerEx*&)>);

static_assert(
    std::is_same_v<decltype(&IAudioResamplerEx::Convert),
                   bool (IAudioResamplerEx::*)(const short*, uint32_t, short*, uint32_t)>);

static_assert(mode1 == 0 && mode2 == 1 && mode3 == 2 && mode4 == 3 && mode5 == 4 && mode6 == 5);

static_assert(VeoNone == 0 && VeoEthereal == 1 && VeoThriller == 2 && VeoLuBan == 3 &&
              VeoLorie == 4 && VeoUncle == 5 && VeoDieFat == 6 && VeoBadBoy == 7 &&
              VeoWarCraft == 8 && VeoHeavyMetal == 9 && VeoCold == 10 && VeoHeavyMechinery == 11 &&
              VeoTrappedBeast == 12 && VeoPowerCurrent == 13);

static_assert(std::is_base_of_v<IDSP, IAudioVoiceBeautify> &&
              std::is_base_of_v<IDSP, IAudioAccelerate> && std::is_base_of_v<IDSP, IEqualizer>);

static_assert(std::is_same_v<decltype(CreateEqualizer), IEqualizer*()>);

static_assert(std::is_same_v<decltype(IAudioVoiceBeautify::Create), IAudioVoiceBeautify*()>);

static_assert(
    std::is_same_v<decltype(IVoiceChangerToolbox::Create), IVoiceChangerToolbox*(int, int)>);

static_assert(std::is_same_v<decltype(CreateBeatTrack), IBeatTrack*(int, int)>);

static_assert(std::is_same_v<decltype(CreateAudioAccelerate), IAudioAccelerate*()>);

static_assert(std::is_same_v<decltype(AccelerateSoundProcess),
                             int(unsigned int, unsigned int, const short*, unsigned int, short*,
                                 unsigned int*, bool)>);

static_assert(
    std::is_same_v<decltype(StretchSoundProcess), int(unsigned int, unsigned int, const short*,
                                                      unsigned int, short*, unsigned int*)>);

static_assert(std::is_constructible_v<RateChanger, bool>);

static_assert(std::is_same_v<decltype(&RateChanger::Process),
                             void (RateChanger::*)(short*, int, int, std::string&)>);

static_assert(std::is_same_v<decltype(&RateChanger::SetRatio), void (RateChanger::*)(double)>);

static_assert(std::is_same_v<decltype(&RateChanger::SetFsAndCh), void (RateChanger::*)(int, int)>);

TEST(EffectInterfaces, KeepTheirSlotsInOrder) {
  using ProcessBytes = int (IDSP::*)(char*, int, int, int, int);
  using ProcessInts = int (IDSP::*)(int*, int, int, int, int, int);
  EXPECT_EQ(Slot(&FIRFilter::Filter), 2U);
  EXPECT_EQ(Slot(&FIRFilter::UpdateCoeffients), 3U);
  EXPECT_EQ(Slot(&IAudioResamplerEx::Convert), 2U);
  EXPECT_EQ(Slot(&IAudioResamplerEx::IsFormatChange), 3U);
  EXPECT_EQ(Slot(&IAudioResamplerEx::GetDestSamples), 4U);
  EXPECT_EQ(Slot(&IAudioResamplerEx::GetSrcSamples), 5U);
  EXPECT_EQ(Slot(&IDSP::Destroy), 2U);
  EXPECT_EQ(Slot<ProcessBytes>(&IDSP::Process), 3U);
  EXPECT_EQ(Slot<ProcessInts>(&IDSP::Process), 4U);
  EXPECT_EQ(Slot(&IDSP::Flush), 5U);
  EXPECT_EQ(Slot(&IDSP::GetEnabled), 6U);
  EXPECT_EQ(Slot(&IDSP::SetEnabled), 7U);
  EXPECT_EQ(Slot(&IDSP::IsActive), 8U);
  EXPECT_EQ(Slot(&IAudioVoiceBeautify::VoiceBeautifyProcess), 9U);
  EXPECT_EQ(Slot(&IAudioVoiceBeautify::SetVoiceBeautifyOption), 10U);
  EXPECT_EQ(Slot(&IAudioAccelerate::SetAccelerateRate), 9U);
  EXPECT_EQ(Slot(&IEqualizer::SetEqGain), 9U);
  EXPECT_EQ(Slot(&IVoiceChangerToolbox::Process), 2U);
  EXPECT_EQ(Slot(&IVoiceChangerToolbox::SetVoiceEffectOption), 3U);
  EXPECT_EQ(Slot(&IBeatTrack::Destroy), 2U);
  EXPECT_EQ(Slot(&IBeatTrack::Start), 3U);
  EXPECT_EQ(Slot(&IBeatTrack::Detectbeat), 4U);
  EXPECT_EQ(Slot(&IBeatTrack::Stop), 5U);
}
