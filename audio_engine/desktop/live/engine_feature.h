#pragma once

#include "engine_api/mixing/audio_engine.h"

namespace desktop {

// What the engine of this process was started for; AudioEngineFeatureCommon before that. Any
// thread.
AudioEngineFeature_t EngineFeature();
void SetEngineFeature(AudioEngineFeature_t feature);

// Whether captured sound is cleaned for this feature.
constexpr bool CleansCapture(AudioEngineFeature_t feature) {
  return feature == AudioEngineFeatureVOIP || feature == AudioEngineFeatureHDVOIP;
}

}  // namespace desktop
