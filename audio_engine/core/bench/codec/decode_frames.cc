#include "bench/codec/decode_frames.h"

#include "bench/codec/whole_frame.h"

namespace bench {

std::vector<unsigned char> DecodeFrames(CAudioCodec& decoder, const AudioStreamFormat& format,
                                        std::vector<unsigned char>& encoded, int headerLen,
                                        size_t most) {
  std::vector<unsigned char> wavOutFrameData(20 * static_cast<size_t>(format.iNumOfChannels) *
                                             static_cast<size_t>(format.iSamplesOfFrame));
  std::vector<unsigned char> decodedPcmData;
  const size_t prefix = headerLen == 4 ? 4 : 0;
  for (size_t offset = 0; offset < encoded.size();) {
    const int frameLen = WholeFrameLength(encoded.data(), encoded.size(), offset, headerLen);
    if (frameLen == 0) break;
    int outLen = static_cast<int>(wavOutFrameData.size());
    decoder.Process(&encoded[offset] + prefix, frameLen, wavOutFrameData.data(), &outLen);
    if (static_cast<size_t>(outLen) > most - decodedPcmData.size()) break;
    decodedPcmData.insert(decodedPcmData.end(), wavOutFrameData.begin(),
                          wavOutFrameData.begin() + outLen);
    offset += prefix + static_cast<size_t>(frameLen);
  }
  return decodedPcmData;
}

}  // namespace bench
