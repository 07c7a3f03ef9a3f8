#pragma once

#include <memory>

#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

// AAC LC, HE, HE v2 and ELD by libfdk-aac, as bare access units. Null in a build without it.
std::unique_ptr<PacketEncoder> CreateAacEncoder(const CodecSetup& setup);
std::unique_ptr<PacketDecoder> CreateAacDecoder(const CodecSetup& setup);

}  // namespace desktop
