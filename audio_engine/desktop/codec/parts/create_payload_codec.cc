#include "desktop/codec/parts/create_payload_codec.h"

#include "desktop/codec/parts/aac_codec.h"
#include "desktop/codec/parts/amr_wb_codec.h"
#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/opus_codec.h"
#include "desktop/codec/parts/speex_codec.h"

namespace desktop {

namespace {

// What codes and decodes with one library.
struct Library {
  std::unique_ptr<PayloadEncoder> (*createEncoder)(const CodecSetup& setup);
  std::unique_ptr<PayloadDecoder> (*createDecoder)(const CodecSetup& setup);
};

Library LibraryOf(Coder coder) {
  switch (coder) {
    case Coder::kOpus:
    case Coder::kSilk:
      return {CreateOpusEncoder, CreateOpusDecoder};
    case Coder::kSpeex:
      return {CreateSpeexEncoder, CreateSpeexDecoder};
    case Coder::kAmrWb:
      return {CreateAmrWbEncoder, CreateAmrWbDecoder};
    default:
      return {CreateAacEncoder, CreateAacDecoder};
  }
}

}  // namespace

std::unique_ptr<PayloadEncoder> CreatePayloadEncoder(const CodecSetup& setup) {
  return LibraryOf(setup.variant->coder).createEncoder(setup);
}

std::unique_ptr<PayloadDecoder> CreatePayloadDecoder(const CodecSetup& setup) {
  return LibraryOf(setup.variant->coder).createDecoder(setup);
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
