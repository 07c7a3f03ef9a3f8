#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// The demo recording: a plucked melody that wanders between the ears. 44.1 kHz, 16-bit interleaved
// stereo, 8 s, peak -6 dBFS; the same bytes on every machine.
std::vector<int16_t> DemoRecording();

// Writes the demo recording where RunTestCase reads its input in a workspace, and nowhere else,
// unless there is a file already that is more than a part of it. Whatever ends the process, the
// whole recording is there or none of it. Returns a line for the user that says which. Throws
// UsageError when it cannot be written.
std::string PlaceDemo(const std::string& workspace);

}  // namespace host
