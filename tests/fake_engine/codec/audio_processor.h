#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine_api/codec/stream_format.h"

// What the fake's processors do, and what they were made for.
struct AudioProcessorScript {
  // What one call's input becomes. At first nothing. It must fit the room that the caller gives.
  std::function<std::string(const std::string& in)> process = [](const std::string&) {
    return std::string();
  };

  std::vector<std::pair<AudioStreamFormat, AudioStreamFormat>> formats = {};  // In, out.
};
