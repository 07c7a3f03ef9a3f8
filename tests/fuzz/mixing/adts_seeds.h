#pragma once

#include <string>
#include <vector>

// Streams of AAC frames with ADTS headers: of one block, of HE, with two channels, after a tag, and
// some bytes of something else between frames. Without an encoder, frames of no content.
std::vector<std::string> AdtsStreams();
