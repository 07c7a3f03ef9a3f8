#pragma once

#include <string>

#include "engine_api/common/audio_frame.h"

// "160, 16000 Hz, 1 ch": what a frame says of its samples. "used" when anything else in it is not
// as in a new frame.
std::string FrameText(const zuwebrtc::AudioFrame& frame);
