#include "desktop/devices/audio_device.h"

#include <pthread.h>

#include <cinttypes>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

#include "desktop/devices/pulse_stream.h"
#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

using std::chrono::steady_clock;

// How long a server is not there before it is looked for, and how often from then on.
constexpr std::chrono::seconds kFirstLook{1};
constexpr std::chrono::seconds kNextLook{5};

// With 0 the sound server is asked first.
std::atomic<double> g_nullSpeed = 0;

struct RunningDevices {
  std::mutex mutex;
  std::vector<AudioDevice*> devices;
  // The failures of those that have ended.
  DeviceFailures failures;
  MakeStream makeStream;
};

// Lives until the process ends, because devices may run as long.
RunningDevices& Running() {
  static auto* const running = new RunningDevices;
  return *running;
}

void Register(AudioDevice* device) {
  [[maybe_unused]] static const int atExit = std::atexit(StopAudioDevices);
  const std::scoped_lock lock(Running().mutex);
  Running().devices.push_back(device);
}

void Unregister(AudioDevice* device) {
  const std::scoped_lock lock(Running().mutex);
  std::erase(Running().devices, device);
}

MakeStream StreamMaker() {
  const std::scoped_lock lock(Running().mutex);
  return Running().makeStream;
}

}  // namespace

void StopAudioDevices() {
  const auto limit = steady_clock::now() + std::chrono::seconds(1);
  while (steady_clock::now() < limit) {
    {
      const std::scoped_lock lock(Running().mutex);
      if (Running().devices.empty()) return;
      for (AudioDevice* device : Running().devices) device->AskToStop();
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

void UseSoundStreams(MakeStream make) {
  const std::scoped_lock lock(Running().mutex);
  Running().makeStream = std::move(make);
}

AudioDevice::AudioDevice(Direction direction, DeviceFormat format, DeviceBlock block)
    : m_direction(direction),
      m_format(format),
      m_pump(direction, format, std::move(block), m_wake) {}

AudioDevice::~AudioDevice() { Stop(); }

const char* AudioDevice::Name() const {
  return m_direction == Direction::kOutput ? "loudspeaker" : "microphone";
}

bool AudioDevice::Start() {
  if (m_thread.joinable()) return false;
  if (!m_format.IsValid()) {
    LogRefusal("%s: no device has %u Hz and %u channels", Name(), m_format.rate, m_format.channels);
    return false;
  }
  m_stop = m_onServer = m_suspended = false;
  m_asksServer = g_nullSpeed <= 0;
  try {
    m_pump.Reset();
    Register(this);
    m_blocks = StartThread([this] { RunBlocks(); });
    m_thread = StartThread([this] { Run(); });
  } catch (const std::exception& error) {
    AskToStop();
    if (m_blocks.joinable()) m_blocks.join();
    Unregister(this);
    LogRefusal("%s: does not start: %s", Name(), error.what());
    return false;
  }
  return true;
}

void AudioDevice::AskToStop() {
  m_stop = true;
  m_pump.Stop();
  m_wake.Post();
}

void AudioDevice::Stop() {
  if (!m_thread.joinable()) return;
  AskToStop();
  m_thread.join();
}

void AudioDevice::RunBlocks() {
  pthread_setname_np(pthread_self(), Name());
  const double speed = g_nullSpeed;
  m_pump.Run(speed > 0 ? speed : 1);
}

void AudioDevice::Run() {
  std::string fault;
  auto stream = m_asksServer ? Connect(&fault) : nullptr;
  m_onServer = stream != nullptr;
  OutputDebugInfo("%s: %u Hz, %u channels, %s%s", Name(), m_format.rate, m_format.channels,
                  m_onServer      ? "sound server"
                  : !m_asksServer ? "null device"
                                  : "null device: no sound server: ",
                  fault.c_str());
  m_pump.Offer(std::move(stream));

  Time look = Now() + kFirstLook;
  while (!m_stop) {
    if (m_asksServer && !m_onServer) {
      m_wake.WaitUntil(look);
    } else {
      m_wake.Wait();
    }
    TellSuspension();
    if (TellLoss()) look = Now() + kFirstLook;
    if (m_stop || !m_asksServer || m_onServer || Now() < look) continue;
    if (!LooksForServer()) look = Now() + kNextLook;
  }
  while (!m_pump.HasEnded()) m_wake.Wait();
  m_blocks.join();
  TellLoss();
  OutputDebugInfo("%s: stopped after %" PRIu64 " blocks of 10 ms, %" PRIu64 " %s, latency %u ms",
                  Name(), Blocks(), Failures(),
                  m_direction == Direction::kOutput ? "underruns" : "overruns", LatencyMs());
  AddDeviceFailures(m_direction, Failures());
  Unregister(this);
}

// Returns null when there is none.
std::unique_ptr<SoundStream> AudioDevice::Connect(std::string* fault) {
  const MakeStream make = StreamMaker();
  auto stream =
      make ? make(m_direction, m_format) : std::make_unique<PulseStream>(m_direction, m_format);
  if (stream->Connect(m_stop)) return stream;
  *fault = stream->Fault();
  return nullptr;
}

bool AudioDevice::LooksForServer() {
  std::string fault;
  auto stream = Connect(&fault);
  if (stream == nullptr) return false;
  m_onServer = true;
  OutputDebugInfo("%s: on the sound server from now on", Name());
  m_pump.Offer(std::move(stream));
  return true;
}

// Returns true when the server was lost.
bool AudioDevice::TellLoss() {
  const auto lost = m_pump.TakeLost();
  if (lost == nullptr) return false;
  m_onServer = m_suspended = false;
  OutputDebugInfo("%s: the sound server is lost, null device from now on: %s", Name(),
                  lost->Fault().c_str());
  return true;
}

void AudioDevice::TellSuspension() {
  const bool suspended = m_pump.IsSuspended();
  if (std::exchange(m_suspended, suspended) == suspended || !m_onServer) return;
  OutputDebugInfo("%s: %s", Name(),
                  suspended ? "suspended by the sound server, null device meanwhile"
                            : "the sound server goes on");
}

}  // namespace desktop
