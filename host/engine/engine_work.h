#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace host {

// How often, over all audio devices of a process, a loudspeaker had nothing to play and a
// microphone lost something.
struct DeviceGaps {
  uint64_t underruns = 0;
  uint64_t overruns = 0;
};

// Called in the routine's process after the routine has returned: waits, for `limit` at most, until
// the engine has finished what it does in the background, such as writing the last seconds of a
// recording. A foreign engine cannot be asked for that: with `runsOn`, when the routine is known to
// leave something running, its process then goes on for the whole of `limit`. Answers what the
// audio devices have counted, which a foreign engine does not tell.
//
// Each program that links the host has one definition of it, which belongs to its engine.
std::optional<DeviceGaps> FinishEngineWork(std::chrono::milliseconds limit, bool runsOn);

}  // namespace host
