#pragma once

#include <functional>
#include <optional>
#include <string>

#include "engine_api/codec/audio_codec.h"

// What the fake's codecs answer.
struct AudioCodecScript {
  std::function<bool(ZUAudioCodec family, AudioLibraryCodecMode mode)> isAvailable =
      [](ZUAudioCodec, AudioLibraryCodecMode) { return true; };

  bool initAnswer = true;
  std::function<void(const AudioStreamFormat& format)> onInit = [](const AudioStreamFormat&) {};

  // What codec number `codec` (from 1, in the order of creation) makes of one call's input. At
  // first nothing. It must fit the room that the caller gives.
  std::function<std::string(int codec, const std::string& in)> process =
      [](int, const std::string&) { return std::string(); };

  // GetEncoderSize's answer; without one the interface's own stands.
  std::optional<int> encoderSize = {};
};
