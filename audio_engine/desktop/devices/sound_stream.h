#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "desktop/platform/step_clock.h"

namespace desktop {

// One stream to or from a sound server. Belongs to one thread at a time.
class SoundStream {
 public:
  virtual ~SoundStream() = default;

  // Connects to the server. Returns false when there is none, or it does not answer until `stop`;
  // Fault then says why.
  virtual bool Connect(const std::atomic<bool>& stop) = 0;

  // Waits for the server until a time, and 10 ms at most. Returns false when it is lost; Fault then
  // says why.
  virtual bool Wait(Time until) = 0;

  // Returns whether the server answers, but has stopped the device for the time being.
  virtual bool IsSuspended() const = 0;

  // Output: returns whether the server asks for a block.
  virtual bool WantsBlock() = 0;

  // Output: gives it one. Returns false when the server is lost.
  virtual bool Give(const short* samples) = 0;

  // Input: takes the next block. Returns false when there is no whole one yet.
  virtual bool Take(short* samples) = 0;

  virtual const std::string& Fault() const = 0;

  // Returns how many gaps there were in what was played or heard.
  virtual uint64_t Failures() const = 0;

  // Output: returns how long the next block takes until it is heard; as long as the server has not
  // told, the length of all that was given. Input: returns how long ago the next block was heard.
  virtual uint32_t LatencyMs() const = 0;
};

}  // namespace desktop
