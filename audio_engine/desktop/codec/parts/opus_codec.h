#pragma once

#include <memory>

#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

// Opus (RFC 6716), and its Silk part alone, by libopus, in frames of 20 ms.
std::unique_ptr<PacketEncoder> CreateOpusEncoder(const CodecSetup& setup);
std::unique_ptr<PacketDecoder> CreateOpusDecoder(const CodecSetup& setup);

// Samples per channel, for a decoder at the encoder's rate. What was coded at 16 kHz (raw id 50)
// and is decoded at 48 kHz (as 51) is 310 samples late.
int OpusLag(const CodecSetup& setup);

}  // namespace desktop
