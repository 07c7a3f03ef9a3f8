#include "engine_api/codec/codec_format.h"

#include "desktop/codec/parts/codec_table.h"
#include "engine_api/codec/net_codec_stream_format.h"

namespace {

using ZUAudio::NetCodecStreamFormat;

// All but iNetAACSTDFormat, which nobody may read.
constexpr StreamFormat NetCodecStreamFormat::*kFormats[] = {
    &NetCodecStreamFormat::iNetAACPlusFormat,
    &NetCodecStreamFormat::iNetAACLC128KMONOFormat,
    &NetCodecStreamFormat::iNetAAC128KFormat,
    &NetCodecStreamFormat::iNetAAC160KFormat,
    &NetCodecStreamFormat::iNetAAC192KFormat,
    &NetCodecStreamFormat::iNetAACEldFormat,
    &NetCodecStreamFormat::iNetAACEldSbrFormat,
    &NetCodecStreamFormat::iNetAACEld32KhzMonoFromat,
    &NetCodecStreamFormat::iNetAACEld16KhzMonoFromat,
    &NetCodecStreamFormat::iNetAMRWBFormat,
    &NetCodecStreamFormat::iNetSilk16KFormat,
    &NetCodecStreamFormat::iNetSilk24KFormat,
    &NetCodecStreamFormat::iNetSpeexMode8Format,
    &NetCodecStreamFormat::iNetSpeexMode4Format,
    &NetCodecStreamFormat::iNetSpeexMode2Format,
    &NetCodecStreamFormat::iNetAAC44KMonoFormat,
    &NetCodecStreamFormat::iNetAAC48KStereoFormat,
    &NetCodecStreamFormat::iNetAAC48KMonoFromat,
    &NetCodecStreamFormat::iNetOPUS16KFormat,
    &NetCodecStreamFormat::iNetOPUS48KFormat,
    &NetCodecStreamFormat::iNetOPUSCommonFormat,
    &NetCodecStreamFormat::iNetOPUSCommonV2Format,
    &NetCodecStreamFormat::iNetAAC64KMonoFormat,
    &NetCodecStreamFormat::iNetPcmFormat,
    &NetCodecStreamFormat::iNetAAC48KHev1Format,
    &NetCodecStreamFormat::iNetAACUniversalFormat,
};

// Returns a bit rate for formats as well whose record has none.
int BitRate(const AudioStreamFormat& format) {
  if (format.iCodec == kAudioCodecPCM) {
    return format.iSampleRate * format.iNumOfChannels * format.iBitsOfSample;
  }
  return desktop::FindVariant(format.iRawCodecId)->bitRate;
}

}  // namespace

AudioStreamFormat FormatFromRawCodecId(int rawCodecId) {
  const NetCodecStreamFormat formats;
  for (const auto record : kFormats) {
    AudioStreamFormat format = (formats.*record).iAudioFormat;
    if (format.iRawCodecId != rawCodecId) continue;
    format.iBitRate = BitRate(format);
    return format;
  }
  return {};
}
