// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <cstdint>
#include <type_traits>

#include "engine_api/enhancement/agc.h"
#include "engine_api/enhancement/audio_agc.h"
#include "engine_api/enhancement/audio_denoise.h"
#include "engine_api/enhancement/voice_detection.h"
#include "engine_api/enhancement/webrtc_agc.h"

static_assert(vadResultIsActive == 0 && vadResultIsPassive == 1 && vadResultIsUnknown == 2 &&
              vadResultIsActiveWithoutVoice == 3);

static_assert(voiceDetectionUnknown == -1 && voiceDetectionVeryLowLikelihood == 0 &&
              voiceDetectionLowLikelihood == 1 && voiceDetectionModerateLikelihood == 2 &&
              voiceDetectionHighLikelihood == 3);

static_assert(std::is_constructible_v<CVoiceDetectionEx, unsigned, unsigned>);

static_assert(std::is_same_v<decltype(&CVoiceDetectionEx::Detect),
                             VADResultKind (CVoiceDetectionEx::*)(short*, unsigned)>);

static_assert(std::is_constructible_v<CAudioDenoise, int, int>);

// A block has no count: it is 10 ms.
static_assert(
    std::is_same_v<decltype(&CAudioDenoise::Process), void (CAudioDenoise::*)(short*)> &&
    std::is_same_v<decltype(&ZUAudio::AudioAgc::Process), void (ZUAudio::AudioAgc::*)(short*)> &&
    std::is_same_v<decltype(&ZUAudio::WebrtcAgc::ProcessCapture),
                   void (ZUAudio::WebrtcAgc::*)(short*, bool)>);

static_assert(kAgcModeUnchanged == 0 && kAgcModeAdaptiveAnalog == 1 &&
              kAgcModeAdaptiveDigital == 2 && kAgcModeFixedDigital == 3);

static_assert(std::is_same_v<decltype(WebRtcAgcConfig::targetLevelDbfs), int16_t> &&
              std::is_same_v<decltype(WebRtcAgcConfig::compressionGaindB), int16_t> &&
              std::is_same_v<decltype(WebRtcAgcConfig::limiterEnable), uint8_t>);
