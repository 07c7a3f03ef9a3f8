#pragma once

#include <cstdio>
#include <span>
#include <string_view>

namespace host {

// What kind of audio file these are the first bytes of: "a WAVE file", "a FLAC file", "an MP3
// file", "an Ogg file", "an AAC file", "an MP4 file"; empty when they may well be headerless
// samples. MPEG and ADTS are recognised by two frame headers at the right distance, because samples
// look like one by chance.
std::string_view ForeignAudio(std::span<const unsigned char> head);

// The same of an open file, which is read from its beginning.
std::string_view ForeignAudio(FILE* file);

}  // namespace host
