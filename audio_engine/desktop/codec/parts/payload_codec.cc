#include "desktop/codec/parts/payload_codec.h"

#include "desktop/codec/parts/aac_codec.h"
#include "desktop/codec/parts/amr_wb_codec.h"
#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/opus_codec.h"
#include "desktop/codec/parts/speex_codec.h"

namespace desktop {

std::unique_ptr<PayloadEncoder> CreatePayloadEncoder(const CodecSetup& setup) {
  switch (setup.variant->coder) {
    case Coder::kOpus:
    case Coder::kSilk:
      return CreateOpusEncoder(setup);
    case Coder::kSpeex:
      return CreateSpeexEncoder(setup);
    case Coder::kAmrWb:
      return CreateAmrWbEncoder(setup);
    default:
      return CreateAacEncoder(setup);
  }
}

std::unique_ptr<PayloadDecoder> CreatePayloadDecoder(const CodecSetup& setup) {
  switch (setup.variant->coder) {
    case Coder::kOpus:
    case Coder::kSilk:
      return CreateOpusDecoder(setup);
    case Coder::kSpeex:
      return CreateSpeexDecoder(setup);
    case Coder::kAmrWb:
      return CreateAmrWbDecoder(setup);
    default:
      return CreateAacDecoder(setup);
  }
}

int PayloadCodecLag(const CodecSetup& setup, size_t blockFrames) {
  switch (setup.variant->coder) {
    case Coder::kAacLc:
      return 3072;
    case Coder::kAacHe:
      return 7105;
    case Coder::kAacHeV2:
      return 9154;
    case Coder::kAacEld:
      return 256;
    case Coder::kAacEldSbr:
      // Low rates do without band replication. Where it is, a block is twice as long.
      return blockFrames == 1024 ? 579 : 256;
    default:
      return OpusLag(setup);
  }
}

}  // namespace desktop
