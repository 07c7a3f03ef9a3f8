#pragma once

// Codec families of the network formats, as bit flags.
enum ZUAudioCodec {
  kAudioCodecUnknown = 0,        // None.
  kAudioCodecSpeex = 1,          // Speex at 8 kHz.
  kAudioCodecAMRWB = 2,          // AMR-WB.
  kAudioCodecSilk = 4,           // Silk; has a CAudioCodec.
  kAudioCodecMP3 = 8,            // MP3, which no network format has.
  kAudioCodecAAC = 16,           // HE-AAC in ADTS; has a CAudioCodec.
  kAudioCodecPCM = 32,           // Samples as they are.
  kAudioCodecAACHIGH = 64,       // AAC LC; has a CAudioCodec.
  kAudioCodecOPUS = 128,         // Opus; has a CAudioCodec.
  kAudioCodecEldAAC = 256,       // AAC-ELD; has a CAudioCodec.
  kAudioCodecAACCommon = 512,    // AAC LC, of raw id 37 alone.
  kAudioCodecOpusCommon = 1024,  // Opus, of raw id 54 alone.
  kAudioCodecAACUni = 2048       // HE-AAC v2 in ADTS; has a CAudioCodec.
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
