#pragma once

#include "engine_api/aec/aec_module.h"
#include "support/talk.h"

// Mono signals through an echo-cancellation module, frame by frame.

struct Format {
  int rate;
  int channels;
};

inline constexpr Format kMono16 = {16000, 1};

// Mono samples as a frame whose channels are all alike.
zuwebrtc::AudioFrame Frame(const short* samples, Format format);

struct Flags {
  bool render = false;
  bool capture1 = false;
  bool capture2 = true;
};

// Mono far and near end, each handed over in its own format; returns the first channel.
Samples Process(AecModule& module, const Samples& far, Format farFormat, const Samples& near,
                Format nearFormat, Flags flags = Flags());

// What comes out, `lag` samples earlier.
Samples Late(const Samples& samples, int lag);
