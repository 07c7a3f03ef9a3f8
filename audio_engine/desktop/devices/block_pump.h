#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/devices/clock_pacer.h"
#include "desktop/devices/device_format.h"
#include "desktop/devices/sound_stream.h"
#include "desktop/platform/wake.h"

namespace desktop {

// The blocks of a device, on the device's own thread: those of a sound server while there is one
// that moves, else those of the null device. Once it runs it neither allocates nor waits for other
// threads nor writes to the log; its owner opens and closes streams and tells what happens.
class BlockPump {
 public:
  // changed: posted when HasEnded, TakeLost or IsSuspended have something new to return.
  BlockPump(Direction direction, DeviceFormat format, DeviceBlock block, Wake& changed);
  ~BlockPump();
  BlockPump(const BlockPump&) = delete;
  BlockPump& operator=(const BlockPump&) = delete;

  // To be called before each Run.
  void Reset();

  // Runs from the first Offer to Stop. The null device's time passes `speed` times as fast as the
  // clock.
  void Run(double speed);
  void Stop();

  // Gives it a stream that is connected, or null, so that it begins without one. To be called while
  // it has none.
  void Offer(std::unique_ptr<SoundStream> stream);

  // Returns whether Run is over.
  bool HasEnded() const { return m_ended; }

  // Returns the stream that was lost since the last call, else null.
  std::unique_ptr<SoundStream> TakeLost() { return Own(m_lost.exchange(nullptr)); }

  // Returns whether the server has stopped the device for the time being, so that the clock stands
  // in.
  bool IsSuspended() const { return m_suspended; }

  // As AudioDevice tells them.
  uint64_t Blocks() const { return m_blocks; }
  uint64_t Failures() const { return m_failures; }
  uint32_t LatencyMs() const { return m_latencyMs; }
  void CountFailure() { ++m_failures; }

 private:
  static std::unique_ptr<SoundStream> Own(SoundStream* stream) {
    return std::unique_ptr<SoundStream>(stream);
  }

  void StepOnServer();
  bool Exchange();
  void Lose();
  void StandIn();
  void StepOnClock();
  void CallBlock();

  const Direction m_direction;
  const DeviceFormat m_format;
  const DeviceBlock m_block;
  Wake& m_changed;
  Wake m_wake;
  double m_speed = 1;
  Time m_start;
  // One block.
  std::vector<short> m_samples;
  // Null without a server.
  std::unique_ptr<SoundStream> m_stream;
  // How many of the stream's failures are in m_failures.
  uint64_t m_counted = 0;
  // Set while the null device stands in.
  std::optional<ClockPacer> m_clock;
  std::atomic<SoundStream*> m_offered = nullptr;
  std::atomic<SoundStream*> m_lost = nullptr;
  std::atomic<bool> m_begun = false;
  std::atomic<bool> m_stop = false;
  std::atomic<bool> m_ended = false;
  std::atomic<bool> m_suspended = false;
  std::atomic<uint64_t> m_blocks = 0;
  std::atomic<uint64_t> m_failures = 0;
  std::atomic<uint32_t> m_latencyMs = 0;
};

}  // namespace desktop
