#pragma once

#include <memory>

#include "desktop/codec/parts/payload_codec.h"

namespace desktop {

// Narrow-band Speex (RFC 5574) by libspeex: 8 kHz mono, blocks of 20 ms, payloads of one length.
std::unique_ptr<PayloadEncoder> CreateSpeexEncoder(const CodecSetup& setup);
std::unique_ptr<PayloadDecoder> CreateSpeexDecoder(const CodecSetup& setup);

}  // namespace desktop
