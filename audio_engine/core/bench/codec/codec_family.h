#pragma once

#include "engine_api/codec/stream_format.h"

namespace bench {

// The family that codes a raw codec id; kAudioCodecUnknown for an id without a codec.
ZUAudioCodec CodecFamily(int codecId);

}  // namespace bench
