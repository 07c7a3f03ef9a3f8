#include "desktop/platform/audio_device.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <utility>

#include "desktop/platform/clock_pacer.h"
#include "desktop/platform/pulse_stream.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

using std::chrono::steady_clock;

// 0: the sound server is asked first.
std::atomic<double> g_nullSpeed = 0;

struct RunningDevices {
  std::mutex mutex;
  std::vector<AudioDevice*> devices;
  DeviceFailures failures;  // Of those that have ended.
};

// Lives until the process ends, because devices may run as long.
RunningDevices& Running() {
  static auto* const running = new RunningDevices;
  return *running;
}

void Register(AudioDevice* device) {
  static const int atExit = std::atexit(StopAudioDevices);
  static_cast<void>(atExit);
  const std::scoped_lock lock(Running().mutex);
  Running().devices.push_back(device);
}

void Unregister(AudioDevice* device) {
  const std::scoped_lock lock(Running().mutex);
  std::erase(Running().devices, device);
}

}  // namespace

void StopAudioDevices() {
  const auto limit = steady_clock::now() + std::chrono::seconds(1);
  while (steady_clock::now() < limit) {
    {
      const std::scoped_lock lock(Running().mutex);
      if (Running().devices.empty()) return;
      for (AudioDevice* device : Running().devices) {
        device->m_stop = true;
        device->m_wake.Post();
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

DeviceFailures AllDeviceFailures() {
  const std::scoped_lock lock(Running().mutex);
  return Running().failures;
}

void AddDeviceFailures(Direction direction, uint64_t count) {
  const std::scoped_lock lock(Running().mutex);
  DeviceFailures& all = Running().failures;
  (direction == Direction::kOutput ? all.outputs : all.inputs) += count;
}

void UseNullDevices(double speed) { g_nullSpeed = speed; }

bool DeviceFormat::IsValid() const {
  return rate >= 8000 && rate <= 48000 && (channels == 1 || channels == 2);
}

AudioDevice::AudioDevice(Direction direction, DeviceFormat format, DeviceBlock block)
    : m_direction(direction), m_format(format), m_block(std::move(block)) {}

AudioDevice::~AudioDevice() { Stop(); }

const char* AudioDevice::Name() const {
  return m_direction == Direction::kOutput ? "loudspeaker" : "microphone";
}

bool AudioDevice::Start() {
  if (m_thread.joinable()) return false;
  if (!m_format.IsValid()) {
    OutputDebugInfo("%s: no device has %u Hz and %u channels", Name(), m_format.rate,
                    m_format.channels);
    return false;
  }
  m_stop = false;
  m_blocks = 0;
  m_failures = 0;
  m_latencyMs = 0;
  try {
    m_samples.assign(m_format.BlockFrames() * m_format.channels, 0);
    Register(this);
    m_thread = StartThread([this] { Run(); });
  } catch (const std::exception& error) {
    Unregister(this);
    OutputDebugInfo("%s: does not start: %s", Name(), error.what());
    return false;
  }
  return true;
}

void AudioDevice::Stop() {
  if (!m_thread.joinable()) return;
  m_stop = true;
  m_wake.Post();
  m_thread.join();
}

void AudioDevice::Run() {
  const Time start = Now();
  if (!RunOnServer()) RunOnClock(start);
  OutputDebugInfo("%s: stopped after %llu blocks of 10 ms, %llu %s, latency %u ms", Name(),
                  static_cast<unsigned long long>(m_blocks),
                  static_cast<unsigned long long>(m_failures),
                  m_direction == Direction::kOutput ? "underruns" : "overruns",
                  static_cast<unsigned>(m_latencyMs));
  AddDeviceFailures(m_direction, m_failures);
  Unregister(this);
}

// True when it ran until Stop.
bool AudioDevice::RunOnServer() {
  if (g_nullSpeed > 0) {
    OutputDebugInfo("%s: %u Hz, %u channels, null device", Name(), m_format.rate,
                    m_format.channels);
    return false;
  }
  PulseStream stream(m_direction, m_format);
  m_streamFailures = 0;
  if (!stream.Connect(m_stop)) {
    OutputDebugInfo("%s: %u Hz, %u channels, null device: no sound server: %s", Name(),
                    m_format.rate, m_format.channels, stream.Fault().c_str());
    return false;
  }
  OutputDebugInfo("%s: %u Hz, %u channels, sound server", Name(), m_format.rate, m_format.channels);
  while (!m_stop) {
    if (!stream.Wait() || !Exchange(stream)) {
      OutputDebugInfo("%s: the sound server is lost, null device from now on: %s", Name(),
                      stream.Fault().c_str());
      return false;
    }
  }
  return true;
}

// Hands over all blocks that are due. False when the server is lost.
bool AudioDevice::Exchange(PulseStream& stream) {
  if (m_direction == Direction::kInput) {
    while (!m_stop && stream.Take(m_samples.data())) CallBlock();
  } else {
    while (!m_stop && stream.WantsBlock()) {
      CallBlock();
      if (!stream.Give(m_samples.data())) return false;
      m_latencyMs = stream.LatencyMs();
    }
  }
  m_failures += stream.Failures() - m_streamFailures;
  m_streamFailures = stream.Failures();
  // A sample of an input waits for its block to be whole as well.
  m_latencyMs = stream.LatencyMs() + (m_direction == Direction::kInput ? 10 : 0);
  return true;
}

void AudioDevice::RunOnClock(Time start) {
  const double speed = g_nullSpeed > 0 ? g_nullSpeed.load() : 1;
  ClockPacer pacer(m_direction, m_format, speed, start, m_blocks);
  m_latencyMs = m_direction == Direction::kInput ? 10 : 0;
  while (true) {
    while (!m_stop && Now() < pacer.Due()) m_wake.WaitUntil(pacer.Due());
    if (m_stop) return;
    if (pacer.Pass(Now())) ++m_failures;
    if (m_direction == Direction::kInput) std::fill(m_samples.begin(), m_samples.end(), short{0});
    CallBlock();
  }
}

void AudioDevice::CallBlock() {
  m_block(m_samples.data(), m_format.BlockFrames());
  ++m_blocks;
}

}  // namespace desktop
