#pragma once

#include <functional>
#include <string>

#include "engine_api/codec/local_codec.h"

// What the fake's codecs for local files answer.
struct LocalCodecScript {
  std::function<bool(AudioLocalCodec::AudioCodecType type)> isAvailable =
      [](AudioLocalCodec::AudioCodecType) { return true; };

  int encoderBytes = 0;

  // What `out` becomes. At first what came in.
  std::function<std::string(const std::string& in)> encode = [](const std::string& in) {
    return in;
  };
  std::function<std::string(const std::string& in)> decode = [](const std::string& in) {
    return in;
  };
};
