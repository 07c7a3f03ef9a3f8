#pragma once

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
