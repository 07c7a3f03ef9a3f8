#pragma once

#include "engine_api/stream_format.h"
#include "engine_api/visibility.h"

// The stream format that belongs to a raw codec id, by value. An id that the engine does not know
// gives a record of zeros, whose iCodec is kAudioCodecUnknown. Any thread.
ENGINE_API AudioStreamFormat FormatFromRawCodecId(int rawCodecId);
