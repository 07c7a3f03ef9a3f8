#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace host {

// The most bytes that tell whether a stream is one of these.
inline constexpr size_t kFramedHeadBytes = 8191 + 7;  // The longest frame, and the next one's head.

// What kind of audio stream without a file header begins here: "an MP3 file", "an AAC file", "an
// AC-3 file"; empty for none. Each is recognised by the headers of two to four frames, as many as
// there are, at the right distances, because samples look like one by chance.
std::string_view FramedAudio(std::span<const unsigned char> head);

}  // namespace host
