// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <type_traits>

#include "engine_api/enhancement/voice_detection.h"

static_assert(vadResultIsActive == 0 && vadResultIsPassive == 1 && vadResultIsUnknown == 2 &&
              vadResultIsActiveWithoutVoice == 3);

static_assert(voiceDetectionUnknown == -1 && voiceDetectionVeryLowLikelihood == 0 &&
              voiceDetectionLowLikelihood == 1 && voiceDetectionModerateLikelihood == 2 &&
              voiceDetectionHighLikelihood == 3);
