#pragma once

#include <cstring>

#include "engine_api/codec/stream_format.h"

// A format with what the routines read of it, the rest zero.
inline AudioStreamFormat CodecFormat(int id, int rate, int channels, int samplesOfFrame) {
  AudioStreamFormat format = {};
  format.iRawCodecId = id;
  format.iSampleRate = rate;
  format.iNumOfChannels = channels;
  format.iSamplesOfFrame = samplesOfFrame;
  return format;
}

// A format of which each field has a value of its own, so that a change of any one shows.
inline AudioStreamFormat DistinctFormat(int id) {
  return {kAudioCodecSilk, 2, 16000, 1, 16, 24000, 5, 29, 8, 41, 3, id};
}

inline bool SameFormat(const AudioStreamFormat& a, const AudioStreamFormat& b) {
  return memcmp(&a, &b, sizeof a) == 0;
}
