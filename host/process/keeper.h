#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <functional>

namespace host {

// The keeper is a process between the host and the process of a routine. All that the routine
// starts becomes the keeper's child sooner or later, so it can be ended with the routine, also when
// the host is killed.

// What the keeper tells the host, in memory that they share.
struct KeeperReport {
  // The signal that has stopped the routine's process; 0 while it goes on.
  std::atomic<int> stopSignal = 0;

  // Whether the routine's process has ended. What follows is known then.
  std::atomic<bool> ended = false;

  // How it ended, as wait gives it, and when, see Now().
  int status = 0;
  double time = 0;

  // Seconds of processing, user and system, and the peak of the memory in bytes.
  double cpu = 0;
  uint64_t peakMemory = 0;
};

// Turns this process, which `host` has just forked, into the keeper of a new process that executes
// `routine`. When that process has ended, or when the keeper gets SIGTERM, or when the host ends,
// it ends everything and exits.
[[noreturn]] void LiveAsKeeper(const std::function<void()>& routine, pid_t host,
                               KeeperReport& report);

}  // namespace host
