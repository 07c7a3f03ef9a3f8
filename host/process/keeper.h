#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <functional>

namespace host {

// The keeper is a process between the host and the process of a routine. All that the routine
// starts becomes the keeper's child sooner or later, so it can be ended with the routine, also when
// the host is killed.

// What it tells the host, in memory that they share.
struct KeeperReport {
  std::atomic<bool> ended = false;  // Of the routine's process; all below the next is known then.
  std::atomic<int> stopSignal = 0;  // That has stopped the routine's process; 0 while it goes on.
  int status = 0;                   // As wait gives it.
  double time = 0;                  // Seconds, see Now().
  double cpu = 0;                   // Seconds of processing, user and system.
  uint64_t peakMemory = 0;          // Bytes
};

// Turns this process, which `host` has just forked, into the keeper of a new process that executes
// `routine`. When that process has ended, or when the keeper gets SIGTERM, or when the host ends,
// it ends everything and exits.
[[noreturn]] void LiveAsKeeper(const std::function<void()>& routine, pid_t host,
                               KeeperReport& report);

}  // namespace host
