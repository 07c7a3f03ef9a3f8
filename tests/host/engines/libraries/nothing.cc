// A library that has nothing of the interface, except for its version.

#include "engine_api/common/interface_version.h"

AUDIO_ENGINE_INTERFACE_VERSION;
