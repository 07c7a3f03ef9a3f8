#pragma once

#include <chrono>

namespace host {

// Called in the routine's process after the routine has returned: waits, for `limit` at most, until
// the engine has finished what it does in the background, such as writing the last seconds of a
// recording. A foreign engine cannot be asked for that: with `runsOn`, when the routine is known to
// leave something running, its process then goes on for the whole of `limit`.
//
// Each program that links the host has one definition of it, which belongs to its engine.
void FinishEngineWork(std::chrono::milliseconds limit, bool runsOn);

}  // namespace host
