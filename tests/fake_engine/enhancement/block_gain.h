#pragma once

#include <functional>

// What the fake's ZUAudio::AudioAgc and ZUAudio::WebrtcAgc do to a block in place, without being
// told how long it is.
struct BlockGainScript {
  std::function<void(short* samples)> process = [](short*) {};
};
