// A facility without one of its functions.

#include "engine_api/common/interface_version.h"
#include "halving.h"

AUDIO_ENGINE_INTERFACE_VERSION;
HALVING_DRC_LIFE;
