#pragma once

// Codec families of the network formats, as bit flags.
enum ZUAudioCodec {
  kAudioCodecUnknown = 0,
  kAudioCodecSpeex = 1,
  kAudioCodecAMRWB = 2,
  kAudioCodecSilk = 4,
  kAudioCodecMP3 = 8,
  kAudioCodecAAC = 16,
  kAudioCodecPCM = 32,
  kAudioCodecAACHIGH = 64,
  kAudioCodecOPUS = 128,
  kAudioCodecEldAAC = 256,
  kAudioCodecAACCommon = 512,
  kAudioCodecOpusCommon = 1024,
  kAudioCodecAACUni = 2048
};

enum StreamType { kStreamTypeUnknown = 0, kStreamTypeAudio = 1, kStreamTypeVideo = 2 };

// The parameters of one codec. A plain record: what is not assigned has no value.
struct AudioStreamFormat {
  ZUAudioCodec iCodec;
  int iFlag;
  int iSampleRate;  // Hz.
  int iNumOfChannels;
  int iBitsOfSample;
  int iBitRate;         // bit/s.
  int iSamplesOfFrame;  // Samples per channel in one codec frame.
  int iProfile;         // AAC: the audio object type.
  int iQuality;
  int iBytesOfCodedFrame;  // 0 where it varies.
  int iNumOfFramesInPacket;
  int iRawCodecId;  // The id on the wire.
};

struct StreamFormat {
  StreamType iType;
  AudioStreamFormat iAudioFormat;
};
