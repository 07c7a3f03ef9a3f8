#pragma once

// The packaged audio processing module. It finds the entries of its configuration by the addresses
// of its own symbols, so they must stay visible where everything else is hidden.

#pragma GCC visibility push(default)
#include <webrtc/modules/audio_processing/include/audio_processing.h>
#include <webrtc/modules/interface/module_common_types.h>
#pragma GCC visibility pop
