#pragma once

// Codecs for local files. Where a codec also has a network format, its value is the raw codec id.
namespace AudioLocalCodec {

enum AudioCodecType {
  UNKNOWN_CODEC = -1,
  SPEEX_CODEC_8 = 0,
  AAC_PLUS_CODEC = 1,
  SILK_CODEC = 2,
  AAC_ELD_CODEC = 4,
  SPEEX_CODEC_4 = 21,
  SPEEX_CODEC_2 = 23,
  AAC_LC_CODEC = 35,
  AAC_AUDIT_CODEC = 36,
  WAV_CODEC = 255
};

}  // namespace AudioLocalCodec
