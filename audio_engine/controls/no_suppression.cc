// A noise suppressor that suppresses nothing.

#include "engine_api/common/interface_version.h"
#include "engine_api/enhancement/audio_denoise.h"

AUDIO_ENGINE_INTERFACE_VERSION;

struct CAudioDenoise::Impl {};

CAudioDenoise::CAudioDenoise(int /*sampleRate*/, int /*channels*/) {}
CAudioDenoise::~CAudioDenoise() = default;
void CAudioDenoise::EnableLightDenoise(bool /*enable*/) {}
void CAudioDenoise::Process(short* /*samples*/) {}
