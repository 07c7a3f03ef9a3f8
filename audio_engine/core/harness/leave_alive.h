#pragma once

namespace harness {

// For a routine that leaves an object of the engine alive on purpose: keeps its address as long as
// the process lives, so that a check for leaks does not take it for lost. Any thread.
void LeaveAlive(const void* object);

}  // namespace harness
