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

  // Connects to the server. False when there is none, or it does not answer until `stop`; Fault
  // then says why.
  virtual bool Connect(const std::atomic<bool>& stop) = 0;

  // Waits for the server until a time, and 10 ms at most. False when it is lost; Fault then says
  // why.
  virtual bool Wait(Time until) = 0;

  // Whether the server answers, but has stopped the device for the time being.
  virtual bool IsSuspended() const = 0;

  // Output: whether the server asks for a block, and the way to give it one, which is false when
  // the server is lost.
  virtual bool WantsBlock() = 0;
  virtual bool Give(const short* samples) = 0;

  // Input: the next block, whole; false when there is none yet.
  virtual bool Take(short* samples) = 0;

  virtual const std::string& Fault() const = 0;

  virtual uint64_t Failures() const = 0;  // Gaps in what was played or heard.

  // Output: how long the next block takes until it is heard; all that was given, as long as the
  // server has not told. Input: how long ago what it gives next was heard.
  virtual uint32_t LatencyMs() const = 0;
};

}  // namespace desktop
