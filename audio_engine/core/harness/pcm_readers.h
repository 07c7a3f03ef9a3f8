#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "engine_api/common/channel_buffer.h"

// Reads one chunk of interleaved 16-bit stereo into `buffer`: its num_frames_ samples per channel
// as the engine scales floats, de-interleaved into the first two channels, or mixed down into a
// buffer of one. interleaved and interleavedFloat are scratch for 2 * num_frames_ values each.
// False, with the buffer untouched, when less than a whole chunk is left or the stream is not open.
bool ReadChunk(FILE* file, short* interleaved, float* interleavedFloat,
               zuwebrtc::ChannelBuffer<float>* buffer);

// Reads as many bytes as `block` holds into it and appends its address to `blocks`. When fewer are
// left, or the stream is not open, `blocks` stays as it is, whatever has become of the bytes of
// `block`.
void ReadPCMFromFileToMix(FILE* stream, std::string& block, std::vector<std::string*>& blocks);
