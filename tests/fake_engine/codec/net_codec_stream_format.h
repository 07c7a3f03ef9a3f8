#pragma once

#include <functional>

#include "engine_api/codec/net_codec_stream_format.h"

// What the fake puts into the table of formats. At first nothing: it stays as the memory was.
struct NetCodecStreamFormatScript {
  std::function<void(ZUAudio::NetCodecStreamFormat& formats)> fill =
      [](ZUAudio::NetCodecStreamFormat&) {};
};
