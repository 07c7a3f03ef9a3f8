// In place of aac_codec.cc in a build without libfdk-aac.

#include "desktop/codec/parts/aac_codec.h"

namespace desktop {

std::unique_ptr<PayloadEncoder> CreateAacEncoder(const CodecSetup& /*setup*/) { return nullptr; }

std::unique_ptr<PayloadDecoder> CreateAacDecoder(const CodecSetup& /*setup*/) { return nullptr; }

}  // namespace desktop
