#include "fuzz/codec/stream_fuzz_seeds.h"

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/codec_format.h"

std::vector<std::string> PlainStreams() {
  std::vector<std::string> streams;
  for (const CodecId& id : CodecIds()) {
    const AudioStreamFormat format = FormatFromRawCodecId(id.rawId);
    const Samples voice = Voice(format.iSampleRate, format.iNumOfChannels, 0.2);
    std::string& stream = streams.emplace_back();
    for (const std::string& packet : Encode(*OpenCodec(id.rawId, kAudioLibraryEncoder), voice,
                                            format.iSamplesOfFrame * format.iNumOfChannels)) {
      stream += packet;
    }
  }
  return streams;
}
