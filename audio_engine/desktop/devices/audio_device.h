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
  uint64_t Blocks() const { return m_pump.Blocks(); }
  uint64_t Failures() const { return m_pump.Failures(); }

  // Counts one more, for a callback that could not keep what an input heard. Any thread.
  void CountFailure() { m_pump.CountFailure(); }

  // How long a sample takes from the callback to the loudspeaker, or from the microphone to the
  // callback, ms. Any thread.
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
  std::thread m_thread;  // Opens streams and writes to the log,
  std::thread m_blocks;  // which the thread of the blocks does not.
  std::atomic<bool> m_stop = false;
  bool m_asksServer = true;
  bool m_onServer = false;
  bool m_suspended = false;  // By the latest line in the log.
  Wake m_wake;
  BlockPump m_pump;
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
// fast as the clock; with 0 the sound server is asked first, as at the beginning. For tests.
void UseNullDevices(double speed);

// From now on every device that starts takes its streams from `make`, one for each attempt to
// connect; null for the sound server's. For tests.
using MakeStream = std::function<std::unique_ptr<SoundStream>(Direction, DeviceFormat)>;
void UseSoundStreams(MakeStream make);

}  // namespace desktop
