#include "desktop/codec/parts/codec_table.h"

#include <algorithm>
#include <iterator>

namespace desktop {

namespace {

// The families code the ids that have one; the others are for AudioProcessor and the local codecs.
constexpr CodecVariant kVariants[] = {
    {0, kAudioCodecUnknown, Coder::kSpeex, 8, 15200, Framing::kTwoByteHeader},
    {1, kAudioCodecAAC, Coder::kAacHeV2, 0, 24000, Framing::kAdts},
    {2, kAudioCodecSilk, Coder::kSilk, 0, 18000, Framing::kTwoByteHeader},
    {3, kAudioCodecUnknown, Coder::kAmrWb, 4, 15850, Framing::kTwoByteHeader},
    {21, kAudioCodecUnknown, Coder::kSpeex, 4, 8000, Framing::kTwoByteHeader},
    {22, kAudioCodecSilk, Coder::kSilk, 0, 24000, Framing::kTwoByteHeader},
    {23, kAudioCodecUnknown, Coder::kSpeex, 2, 5950, Framing::kTwoByteHeader},
    {35, kAudioCodecAACHIGH, Coder::kAacLc, 0, 128000, Framing::kTwoByteHeader},
    {36, kAudioCodecAACHIGH, Coder::kAacLc, 0, 160000, Framing::kTwoByteHeader},
    // Deliberate: not the family that the format of id 37 names. With that one, CreateAudioCodec of
    // the family that codes ids 35 and 36 would refuse it, and there is no codec of the other.
    {37, kAudioCodecAACHIGH, Coder::kAacLc, 0, 192000, Framing::kTwoByteHeader},
    {38, kAudioCodecEldAAC, Coder::kAacEldSbr, 0, 64000, Framing::kTwoByteHeader},
    {39, kAudioCodecEldAAC, Coder::kAacEld, 0, 72000, Framing::kTwoByteHeader},
    {40, kAudioCodecAACHIGH, Coder::kAacLc, 0, 40000, Framing::kTwoByteHeader},
    {41, kAudioCodecAACHIGH, Coder::kAacLc, 0, 64000, Framing::kTwoByteHeader},
    {42, kAudioCodecAACHIGH, Coder::kAacLc, 0, 40000, Framing::kTwoByteHeader},
    {43, kAudioCodecEldAAC, Coder::kAacEld, 0, 32000, Framing::kTwoByteHeader},
    {44, kAudioCodecEldAAC, Coder::kAacEld, 0, 48000, Framing::kTwoByteHeader},
    {45, kAudioCodecAACHIGH, Coder::kAacLc, 0, 64000, Framing::kTwoByteHeader},
    {46, kAudioCodecAAC, Coder::kAacHe, 0, 48000, Framing::kAdts},
    {50, kAudioCodecOPUS, Coder::kOpus, 0, 18000, Framing::kTwoByteHeader},
    {51, kAudioCodecOPUS, Coder::kOpus, 0, 48000, Framing::kTwoByteHeader},
    {52, kAudioCodecOPUS, Coder::kOpus, 0, 64000, Framing::kTwoByteHeader},
    {53, kAudioCodecAACHIGH, Coder::kAacLc, 0, 128000, Framing::kTwoByteHeader},
    {54, kAudioCodecUnknown, Coder::kOpus, 0, 64000, Framing::kTwoByteHeader},
    {55, kAudioCodecAACUni, Coder::kAacHeV2, 0, 24000, Framing::kAdts},
};

}  // namespace

const CodecVariant* FindVariant(int rawId) {
  for (const CodecVariant& variant : kVariants) {
    if (variant.rawId == rawId) return &variant;
  }
  return nullptr;
}

bool IsOffered(ZUAudioCodec family) {
  if (family == kAudioCodecUnknown) return false;
  return std::any_of(std::begin(kVariants), std::end(kVariants), [&](const CodecVariant& v) {
    return v.family == family && IsBuiltIn(v.coder);
  });
}

}  // namespace desktop
