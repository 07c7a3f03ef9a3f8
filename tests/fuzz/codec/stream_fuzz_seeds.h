#pragma once

#include <string>
#include <vector>

// The plain stream of 0.2 s of a voice, for every raw id of CodecIds().
std::vector<std::string> PlainStreams();
