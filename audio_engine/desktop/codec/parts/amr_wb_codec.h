#pragma once

#include <memory>

#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

// AMR-WB (3GPP TS 26.171) by libvo-amrwbenc and libopencore-amrwb: 16 kHz mono, frames of 20 ms,
// packets of one length in the storage format of RFC 4867, mode octet first.
std::unique_ptr<PacketEncoder> CreateAmrWbEncoder(const CodecSetup& setup);
std::unique_ptr<PacketDecoder> CreateAmrWbDecoder(const CodecSetup& setup);

}  // namespace desktop
