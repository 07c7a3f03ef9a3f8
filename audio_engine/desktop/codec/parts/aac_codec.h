#pragma once

#include <memory>

#include "desktop/codec/parts/payload_codec.h"

namespace desktop {

// AAC LC, HE, HE v2 and ELD by libfdk-aac, as bare access units. Null in a build without it.
std::unique_ptr<PayloadEncoder> CreateAacEncoder(const CodecSetup& setup);
std::unique_ptr<PayloadDecoder> CreateAacDecoder(const CodecSetup& setup);

}  // namespace desktop
