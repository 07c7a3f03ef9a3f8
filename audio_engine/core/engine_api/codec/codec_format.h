#pragma once

#include "../common/visibility.h"
#include "stream_format.h"

// The stream format that belongs to a raw codec id, by value, every field set; the bit rate is the
// one that the codec of that id works at. An id that the engine does not know gives a record of
// zeros, whose iCodec is kAudioCodecUnknown. Any thread.
ENGINE_API AudioStreamFormat FormatFromRawCodecId(int rawCodecId);
