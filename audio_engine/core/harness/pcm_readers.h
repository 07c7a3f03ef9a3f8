#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "engine_api/common/channel_buffer.h"
#include "harness/declared.h"

// Reads one chunk of interleaved 16-bit stereo into `buffer`: its num_frames_ samples per channel
// as the engine scales floats, de-interleaved into the first two channels, or mixed down into a
// buffer of one. interleaved and interleavedFloat are scratch for 2 * num_frames_ values each.
// False, with the buffer untouched, when less than a whole chunk is left or the stream is not open.
HELPER(bool, ReadChunk, FILE* file, short* interleaved, float* interleavedFloat,
       zuwebrtc::ChannelBuffer<float>* buffer);

// Reads as many bytes as `block` holds into it and appends its address to `blocks`. At the end,
// when fewer are left or the stream is not open, `blocks` is unchanged and `block` unspecified.
HELPER(void, ReadPCMFromFileToMix, FILE* stream, std::string& block,
       std::vector<std::string*>& blocks);
