#include "engine_api/codec/net_codec_stream_format.h"

namespace ZUAudio {

namespace {

// What a format fixes apart from the bit rate.
struct Fixed {
  ZUAudioCodec codec;
  int rate;  // Hz.
  int channels;
  int samplesOfFrame;
  int profile;
  int quality;
  int bytesOfCodedFrame;
  int framesInPacket;
  int rawCodecId;
};

// Deliberate: assigns field by field and leaves the bit rate as the memory was. With a value, a
// reader of the rate would get one where the table fixes none.
void FillWithoutBitRate(StreamFormat& format, const Fixed& fixed) {
  format.iType = kStreamTypeAudio;
  AudioStreamFormat& audio = format.iAudioFormat;
  audio.iCodec = fixed.codec;
  audio.iFlag = 0;
  audio.iSampleRate = fixed.rate;
  audio.iNumOfChannels = fixed.channels;
  audio.iBitsOfSample = 16;
  audio.iSamplesOfFrame = fixed.samplesOfFrame;
  audio.iProfile = fixed.profile;
  audio.iQuality = fixed.quality;
  audio.iBytesOfCodedFrame = fixed.bytesOfCodedFrame;
  audio.iNumOfFramesInPacket = fixed.framesInPacket;
  audio.iRawCodecId = fixed.rawCodecId;
}

void Fill(StreamFormat& format, int bitRate, const Fixed& fixed) {
  FillWithoutBitRate(format, fixed);
  format.iAudioFormat.iBitRate = bitRate;
}

}  // namespace

NetCodecStreamFormat::NetCodecStreamFormat() {
  Fill(iNetAACPlusFormat, 24000, {kAudioCodecAAC, 44100, 2, 2048, 29, 0, 0, 2, 1});
  Fill(iNetAACLC128KMONOFormat, 128000, {kAudioCodecAACHIGH, 44100, 1, 1024, 2, 0, 0, 1, 53});
  Fill(iNetAAC128KFormat, 128000, {kAudioCodecAACHIGH, 44100, 2, 1024, 5, 0, 0, 1, 35});
  FillWithoutBitRate(iNetAAC160KFormat, {kAudioCodecAACHIGH, 44100, 2, 1024, 5, 0, 0, 1, 36});
  // Deliberate: the record of id 37 says 512, although ids 35, 36 and 37 are all coded with family
  // 64. With 64 here, a codec asked for by this record would be another one.
  Fill(iNetAAC192KFormat, 192000, {kAudioCodecAACCommon, 44100, 2, 1024, 5, 0, 0, 1, 37});
  FillWithoutBitRate(iNetAACEldFormat, {kAudioCodecEldAAC, 44100, 2, 1024, 5, 0, 0, 1, 38});
  // Deliberate: 72000 stands in the quality and the bit rate has no value. Moved, a reader of the
  // quality would find 0.
  FillWithoutBitRate(iNetAACEldSbrFormat, {kAudioCodecEldAAC, 44100, 2, 512, 5, 72000, 0, 1, 39});
  FillWithoutBitRate(iNetAACEld32KhzMonoFromat, {kAudioCodecEldAAC, 32000, 1, 512, 6, 0, 0, 1, 44});
  FillWithoutBitRate(iNetAACEld16KhzMonoFromat, {kAudioCodecEldAAC, 16000, 1, 512, 7, 0, 0, 1, 43});
  FillWithoutBitRate(iNetAMRWBFormat, {kAudioCodecAMRWB, 16000, 1, 320, 0, 5, 41, 4, 3});
  FillWithoutBitRate(iNetSilk16KFormat, {kAudioCodecSilk, 16000, 1, 320, 0, 5, 0, 1, 2});
  FillWithoutBitRate(iNetSilk24KFormat, {kAudioCodecSilk, 24000, 1, 480, 0, 8, 0, 4, 22});
  FillWithoutBitRate(iNetSpeexMode8Format, {kAudioCodecSpeex, 8000, 1, 160, 0, 8, 38, 4, 0});
  FillWithoutBitRate(iNetSpeexMode4Format, {kAudioCodecSpeex, 8000, 1, 160, 0, 4, 20, 4, 21});
  FillWithoutBitRate(iNetSpeexMode2Format, {kAudioCodecSpeex, 8000, 1, 160, 0, 2, 15, 4, 23});
  FillWithoutBitRate(iNetAAC44KMonoFormat, {kAudioCodecAACHIGH, 44100, 1, 1024, 5, 0, 0, 1, 41});
  Fill(iNetAAC48KStereoFormat, 40000, {kAudioCodecAACHIGH, 48000, 2, 1024, 5, 0, 0, 1, 40});
  Fill(iNetAAC48KMonoFromat, 40000, {kAudioCodecAACHIGH, 48000, 1, 1024, 5, 0, 0, 1, 42});

  // Deliberate: iNetAACSTDFormat gets no value at all. Filled in, it would be offered as a format
  // for which there is no codec.

  Fill(iNetOPUS16KFormat, 18000, {kAudioCodecOPUS, 16000, 1, 320, 5, 0, 0, 1, 50});
  Fill(iNetOPUS48KFormat, 48000, {kAudioCodecOPUS, 48000, 1, 960, 5, 0, 0, 1, 51});
  Fill(iNetOPUSCommonFormat, 64000, {kAudioCodecOPUS, 48000, 2, 960, 5, 0, 0, 1, 52});
  Fill(iNetOPUSCommonV2Format, 64000, {kAudioCodecOpusCommon, 48000, 2, 960, 5, 0, 0, 1, 54});
  Fill(iNetAAC64KMonoFormat, 64000, {kAudioCodecAACHIGH, 44100, 1, 1024, 5, 0, 0, 1, 45});
  FillWithoutBitRate(iNetPcmFormat, {kAudioCodecPCM, 44100, 2, 2048, 0, 0, 0, 1, -1});
  Fill(iNetAAC48KHev1Format, 48000, {kAudioCodecAAC, 44100, 2, 2048, 5, 0, 0, 2, 46});
  Fill(iNetAACUniversalFormat, 24000, {kAudioCodecAACUni, 44100, 2, 2048, 29, 0, 0, 1, 55});
}

}  // namespace ZUAudio
