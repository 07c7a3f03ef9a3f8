#pragma once

#include <string>

// What an independent decoder makes of an ADTS stream. Decoded in a process of its own.
struct Decoded {
  bool available = false;  // ffmpeg is installed.
  std::string complaints;  // All that it says; empty for a sound stream.
  int rate = 0;            // Hz.
  int channels = 0;
  double seconds = 0;
};

Decoded DecodeWithFfmpeg(const std::string& adts);
