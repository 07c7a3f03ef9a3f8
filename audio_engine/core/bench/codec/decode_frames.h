#pragma once

#include <climits>
#include <cstddef>
#include <vector>

#include "engine_api/codec/audio_codec.h"

namespace bench {

// Decodes frame after frame of `encoded`, up to the first that is none; headerLen is the header
// style, and a length of 4 bytes ahead of a frame is not given to the decoder. It ends without a
// word before the frame whose samples would make more than `most` bytes: one Write takes no more.
std::vector<unsigned char> DecodeFrames(CAudioCodec& decoder, const AudioStreamFormat& format,
                                        std::vector<unsigned char>& encoded, int headerLen,
                                        size_t most = INT_MAX);

}  // namespace bench
