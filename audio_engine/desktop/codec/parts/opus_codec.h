#pragma once

#include <memory>

#include "desktop/codec/parts/payload_codec.h"

namespace desktop {

// Opus (RFC 6716), and its Silk part alone, by libopus, in blocks of 20 ms.
std::unique_ptr<PayloadEncoder> CreateOpusEncoder(const CodecSetup& setup);
std::unique_ptr<PayloadDecoder> CreateOpusDecoder(const CodecSetup& setup);

// Samples per channel, for a decoder at the encoder's rate. What was coded at 16 kHz (raw id 50)
// and is decoded at 48 kHz (as 51) is 310 samples late.
int OpusLag(const CodecSetup& setup);

}  // namespace desktop
