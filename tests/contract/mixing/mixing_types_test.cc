// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <type_traits>

#include "engine_api/mixing/audio_source.h"

static_assert(AudioSourceTypeMic == 0 && AudioSourceTypeOuterPCM == 1 && AudioSourceTypeMix == 2);
