// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <type_traits>

#include "engine_api/aec/aec_module.h"
#include "engine_api/aec/audio_buffer.h"

using zuwebrtc::AudioBuffer;

static_assert(APMFSCHSEL == 0);

static_assert(std::is_constructible_v<AudioBuffer, int, int, int, int, int>);
