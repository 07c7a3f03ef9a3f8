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
  // changed: is posted when HasEnded, TakeLost or IsSuspended answer something new.
  BlockPump(Direction direction, DeviceFormat format, DeviceBlock block, Wake& changed);
  ~BlockPump();
  BlockPump(const BlockPump&) = delete;
  BlockPump& operator=(const BlockPump&) = delete;

  void Reset();            // Before each Run.
  void Run(double speed);  // From the first Offer to Stop. The null device's time is so fast.
  void Stop();

  // Gives it a stream that is connected; null for none, with which it can begin as well. To be
  // called while it has none.
  void Offer(std::unique_ptr<SoundStream> stream);

  bool HasEnded() const { return m_ended; }  // After Run.

  // The stream that was lost since the last call, else null.
  std::unique_ptr<SoundStream> TakeLost() { return Own(m_lost.exchange(nullptr)); }

  // Whether the server has stopped the device for the time being, so that the clock stands in.
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
  std::vector<short> m_samples;           // One block.
  std::unique_ptr<SoundStream> m_stream;  // Null without a server.
  uint64_t m_counted = 0;                 // Of the stream's failures.
  std::optional<ClockPacer> m_clock;      // While the null device stands in.
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
