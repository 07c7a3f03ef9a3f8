#pragma once

#include <functional>

#include "engine_api/codec/stream_format.h"

// The fake's formats of raw codec ids.
struct CodecFormatScript {
  // At first zeros, as for an id that the engine does not know, but for the id itself.
  std::function<AudioStreamFormat(int rawCodecId)> format = [](int rawCodecId) {
    AudioStreamFormat format = {};
    format.iRawCodecId = rawCodecId;
    return format;
  };
};
