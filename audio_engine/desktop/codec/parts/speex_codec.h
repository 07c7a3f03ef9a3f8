#pragma once

#include <memory>

#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

// Narrow-band Speex (RFC 5574) by libspeex: 8 kHz mono, frames of 20 ms, packets of one length.
std::unique_ptr<PacketEncoder> CreateSpeexEncoder(const CodecSetup& setup);
std::unique_ptr<PacketDecoder> CreateSpeexDecoder(const CodecSetup& setup);

}  // namespace desktop
