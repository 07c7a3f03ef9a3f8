#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "desktop/devices/block_pump.h"
#include "desktop/devices/device_format.h"
#include "desktop/platform/wake.h"

// The loudspeaker and the microphone of the machine, in blocks of 10 ms.

namespace desktop {

// One stream to or from a device: the sound server's where there is one, else the null device,
// which hears silence, swallows what it is given, and is paced by the clock. A server that is lost,
// or was not there, is looked for 1 s later and then every 5 s; while it suspends the device the
// null device stands in. The log has a line at the start, at each such change, and at the end with
// the counts. Belongs to one thread.
class AudioDevice {
 public:
  AudioDevice(Direction direction, DeviceFormat format, DeviceBlock block);

  // Stops.
  ~AudioDevice();
  AudioDevice(const AudioDevice&) = delete;
  AudioDevice& operator=(const AudioDevice&) = delete;

  // Starts the thread and returns at once. Returns false when it runs already, and, with one line
  // in the log, when the format is not valid or there is no thread to be had.
  bool Start();

  // No block is called afterwards. Takes 1 s at most, whatever the sound server does.
  void Stop();

  DeviceFormat Format() const { return m_format; }

  // Returns the number of blocks since the start. Any thread.
  uint64_t Blocks() const { return m_pump.Blocks(); }

  // Returns how often an output had nothing to play or an input lost something. Any thread.
  uint64_t Failures() const { return m_pump.Failures(); }

  // Counts one more failure, of a callback that could not keep what an input heard. Any thread.
  void CountFailure() { m_pump.CountFailure(); }

  // Returns how long a sample takes from the callback to the loudspeaker, or from the microphone to
  // the callback, ms. Any thread.
  uint32_t LatencyMs() const { return m_pump.LatencyMs(); }

 private:
  const char* Name() const;
  void Run();
  void RunBlocks();
  void TellSuspension();
  bool TellLoss();
  bool LooksForServer();
  std::unique_ptr<SoundStream> Connect(std::string* fault);
  void AskToStop();
  friend void StopAudioDevices();

  const Direction m_direction;
  const DeviceFormat m_format;
  // Opens streams and writes to the log.
  std::thread m_thread;
  // Moves the blocks, and never waits for m_thread.
  std::thread m_blocks;
  std::atomic<bool> m_stop = false;
  bool m_asksServer = true;
  bool m_onServer = false;
  // What the latest line in the log says.
  bool m_suspended = false;
  Wake m_wake;
  BlockPump m_pump;
};

// Stops all devices that run and waits for them, a second at most, so that each writes its last
// line to the log before the process ends. Also called when the process returns from main.
void StopAudioDevices();

// Blocks that were lost on the way to an output or from an input, counted by all devices of the
// process that have been stopped or added by AddDeviceFailures.
struct DeviceFailures {
  uint64_t outputs = 0;
  uint64_t inputs = 0;
};
DeviceFailures AllDeviceFailures();
void AddDeviceFailures(Direction direction, uint64_t count);

// From now on every device that starts is the null device, and its time passes `speed` times as
// fast as the clock; with 0 the sound server is asked first, as at the beginning. For tests.
void UseNullDevices(double speed);

// From now on every device that starts takes its streams from `make`, one for each attempt to
// connect; null for the sound server's. For tests.
using MakeStream = std::function<std::unique_ptr<SoundStream>(Direction, DeviceFormat)>;
void UseSoundStreams(MakeStream make);

}  // namespace desktop
