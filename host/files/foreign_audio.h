#pragma once

#include <cstdio>
#include <span>
#include <string_view>

namespace host {

// The two kinds that hold no audio.
inline constexpr std::string_view kText = "a text";
inline constexpr std::string_view kProgram = "a program";

// What kind of file these are the first bytes of ("a WAVE file", "an MP3 file", kText); empty when
// they may well be headerless samples. A kind is recognised by four bytes at least, or by what
// follows them, so that samples are not taken for it by chance.
std::string_view ForeignAudio(std::span<const unsigned char> head);

// The same of an open file, which is read from its beginning.
std::string_view ForeignAudio(FILE* file);

}  // namespace host
