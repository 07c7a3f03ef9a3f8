#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include "desktop/platform/wake.h"

// The loudspeaker and the microphone of the machine, in blocks of 10 ms.

namespace desktop {

class PulseStream;

enum class Direction { kOutput, kInput };

struct DeviceFormat {
  uint32_t rate = 48000;  // Hz, 8000 to 48000.
  uint32_t channels = 2;  // 1 or 2, interleaved.

  bool IsValid() const;

  // Frames (samples per channel) of a block of 10 ms, a fraction of a frame left out.
  size_t BlockFrames() const { return rate / 100; }
};

// Called on the device's own thread with one block: an output fills it, an input reads it. It
// neither allocates nor waits nor touches files; a BlockRing hands blocks to and from a thread that
// may.
using DeviceBlock = std::function<void(short* samples, size_t frames)>;

// One stream to or from a device: the sound server's where there is one, else the null device,
// which hears silence, swallows what it is given, and is paced by the clock. The log says which in
// one line at the start, and counts in one line at the end. Belongs to one thread.
class AudioDevice {
 public:
  AudioDevice(Direction direction, DeviceFormat format, DeviceBlock block);
  ~AudioDevice();  // Stops.
  AudioDevice(const AudioDevice&) = delete;
  AudioDevice& operator=(const AudioDevice&) = delete;

  // Starts the thread; returns at once. False when it runs already, the format is none, or there is
  // no thread to be had; the log has a line then.
  bool Start();

  // No block is called afterwards. Takes 1 s at most, whatever the sound server does.
  void Stop();

  DeviceFormat Format() const { return m_format; }

  // Blocks since the start, and how often an output had nothing to play or an input lost
  // something. Any thread.
  uint64_t Blocks() const { return m_blocks; }
  uint64_t Failures() const { return m_failures; }

  // Counts one more, for a callback that could not keep what an input heard. Any thread.
  void CountFailure() { ++m_failures; }

  // How long a sample takes from the callback to the loudspeaker, or from the microphone to the
  // callback, ms. Any thread.
  uint32_t LatencyMs() const { return m_latencyMs; }

 private:
  const char* Name() const;
  void Run();
  friend void StopAudioDevices();

  bool RunOnServer();
  bool Exchange(PulseStream& stream);
  void RunOnClock(Time start);
  void CallBlock();

  const Direction m_direction;
  const DeviceFormat m_format;
  const DeviceBlock m_block;
  std::vector<short> m_samples;  // One block.
  std::thread m_thread;
  std::atomic<bool> m_stop = false;
  Wake m_wake;  // From the wait for the null device's next block, in order to stop.
  std::atomic<uint64_t> m_blocks = 0;
  std::atomic<uint64_t> m_failures = 0;
  uint64_t m_streamFailures = 0;  // Those of the sound server's that are counted already.
  std::atomic<uint32_t> m_latencyMs = 0;
};

// Ends all devices that run, for a process that is about to end and leaves them behind: each still
// tells the log how it went. Waits for them, a second at most. They do not start again. Done as
// well when the process returns from main.
void StopAudioDevices();

// What Failures has counted so far, over all devices of the process that have been stopped, and
// what was added: blocks that were lost on the way to an output or from an input.
struct DeviceFailures {
  uint64_t outputs = 0;
  uint64_t inputs = 0;
};
DeviceFailures AllDeviceFailures();
void AddDeviceFailures(Direction direction, uint64_t count);

// From now on every device that starts is the null device, and its time passes `speed` times as
// fast as the clock. For tests.
void UseNullDevices(double speed);

}  // namespace desktop
