#pragma once

#include <cstddef>
#include <memory>

#include "desktop/codec/parts/payload_codec.h"

namespace desktop {

// Make the coder of any codec: all libraries are known here and nowhere above. Null when the
// library does not code that.
std::unique_ptr<PayloadEncoder> CreatePayloadEncoder(const CodecSetup& setup);
std::unique_ptr<PayloadDecoder> CreatePayloadDecoder(const CodecSetup& setup);

// Returns by how many frames a signal is late after an encoder and a decoder of one of the codec
// families, as measured. blockFrames: the length of a block.
int PayloadCodecLag(const CodecSetup& setup, size_t blockFrames);

}  // namespace desktop
