#pragma once

#include <sys/types.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace host {

// The calls that a crash happened in, as addresses: a process that has crashed is asked for no more
// than that.
struct CrashCalls {
  static constexpr size_t kMax = 256;

  std::atomic<bool> taken = false;  // Once; by the thread that crashed first.
  uintptr_t at = 0;                 // Where it crashed; 0 where that is not known.

  // The return addresses of the calls in which the noting was begun, the innermost call first: what
  // they have in common with those of the crash is the host's.
  std::array<void*, kMax> before = {};
  size_t countBefore = 0;

  // The return addresses, the innermost call first; complete once `count` is set.
  std::array<void*, kMax> calls = {};
  std::atomic<size_t> count = 0;
};

// From now on a crash of this process notes the calls in `calls`, which outlives it, and ends the
// process by its signal as before; also one for want of stack, in this thread. Leaves alone the
// signals that somebody else handles, as a sanitizer does. What this process forks notes nothing.
void NoteCrashes(CrashCalls* calls);

}  // namespace host
