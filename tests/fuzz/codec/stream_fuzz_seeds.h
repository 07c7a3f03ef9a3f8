#pragma once

#include <string>
#include <vector>

// The plain stream of 0.4 s of a voice, for every raw id of CodecIds().
std::vector<std::string> PlainStreams();
