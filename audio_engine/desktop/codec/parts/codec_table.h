#pragma once

#include "engine_api/codec/stream_format.h"

namespace desktop {

enum class Coder { kAacLc, kAacHe, kAacHeV2, kAacEld, kAacEldSbr, kOpus, kSilk, kSpeex, kAmrWb };

// What delimits the packets of a stream; docs/formats.md has the bytes.
enum class Framing { kTwoByteHeader, kAdts, kBare };

// How one raw codec id is coded.
struct CodecVariant {
  int rawId;

  // The family whose codec CreateAudioCodec makes; kAudioCodecUnknown where there is none.
  ZUAudioCodec family;
  Coder coder;

  // The quality of Speex or the mode of AMR-WB; not used by the others.
  int quality;
  int bitRate;  // bit/s
  Framing framing;
};

// Null for an id that no codec here codes.
const CodecVariant* FindVariant(int rawId);

constexpr bool IsAac(Coder coder) { return coder <= Coder::kAacEldSbr; }

// Whether this build codes `coder`.
constexpr bool IsBuiltIn(Coder coder) { return !IsAac(coder) || AUDIO_ENGINE_HAS_AAC != 0; }

// Whether this build has a codec of `family`.
bool IsOffered(ZUAudioCodec family);

}  // namespace desktop
