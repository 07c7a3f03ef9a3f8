#pragma once

#include <atomic>

namespace desktop {

// Whether the microphones of this process clean what they capture: the engine switches it by the
// feature that it is started for, also while a capture is open. False at first. Any thread.
std::atomic<bool>& CleansCapture();

}  // namespace desktop
