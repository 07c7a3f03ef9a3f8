#pragma once

#include <memory>

#include "desktop/codec/parts/payload_codec.h"

namespace desktop {

// AMR-WB (3GPP TS 26.171) by libvo-amrwbenc and libopencore-amrwb: 16 kHz mono, blocks of 20 ms,
// payloads of one length in the storage format of RFC 4867, mode octet first.
std::unique_ptr<PayloadEncoder> CreateAmrWbEncoder(const CodecSetup& setup);
std::unique_ptr<PayloadDecoder> CreateAmrWbDecoder(const CodecSetup& setup);

}  // namespace desktop
