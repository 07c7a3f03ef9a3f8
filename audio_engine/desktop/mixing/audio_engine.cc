#include "engine_api/mixing/audio_engine.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

#include "desktop/live/microphone.h"
#include "desktop/mixing/parts/audio_saver.h"
#include "desktop/mixing/parts/capture_cleaning.h"
#include "desktop/mixing/parts/try_to_start.h"
#include "desktop/platform/callback_scope.h"
#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace {

using desktop::CaptureSaver;
using desktop::DeviceFormat;
using desktop::FileSink;
using desktop::Loudspeaker;
using desktop::Microphone;
using desktop::RefusesInCallback;

// The format of a saver that is started without an open capture.
constexpr DeviceFormat kSaverFormat = {44100, 1};

// Returns null, with one line in the log, when the device does not start.
std::unique_ptr<Microphone> OpenMicrophone(DeviceFormat format) {
  std::unique_ptr<Microphone> microphone;
  const bool starts = desktop::TryToStart("microphone:", [&] {
    microphone = std::make_unique<Microphone>(format, desktop::CleansCapture());
    return microphone->Start();
  });
  return starts ? std::move(microphone) : nullptr;
}

CaptureSaver::What SavedOf(AudioSaverMode mode) {
  using What = CaptureSaver::What;
  if (mode == AudioSaverBoth) return What::kWithPlayed;
  return mode == AusioSaverOnlyCaptureOri ? What::kMicrophone : What::kMicrophonePath;
}

class AudioEngine;

class AudioCapture : public IAudioCapture, public desktop::CaptureListener {
 public:
  explicit AudioCapture(AudioEngine& engine) : m_engine(engine) {}
  ~AudioCapture() override { CloseDevice(); }

  bool Open(uint32_t sampleRate, uint32_t channels, uint32_t bitsPerSample) override {
    if (RefusesInCallback(this, "IAudioCapture::Open")) return false;
    CloseDevice();
    const DeviceFormat format = {sampleRate, channels};
    if (!format.IsValid() || bitsPerSample != 16) {
      desktop::LogRefusal("microphone: cannot be opened with %u Hz, %u channels, %u bits",
                          sampleRate, channels, bitsPerSample);
      return false;
    }
    m_microphone = OpenMicrophone(format);
    return m_microphone != nullptr;
  }

  bool Start(IAudioCaptureNotify* notify) override {
    if (RefusesInCallback(this, "IAudioCapture::Start") || m_microphone == nullptr) return false;
    EndCalls();
    m_notify = notify;
    m_showsVolume = true;
    if (notify != nullptr) m_microphone->Add(this);
    return true;
  }

  void Stop() override {
    if (!RefusesInCallback(this, "IAudioCapture::Stop")) EndCalls();
  }

  void Close() override {
    if (!RefusesInCallback(this, "IAudioCapture::Close")) CloseDevice();
  }

  void Destroy() override;

  void OnCaptured(const desktop::CapturedBlock& block) override {
    const desktop::CallbackScope ofEngine(&m_engine);
    const desktop::CallbackScope ofCapture(this);
    const auto bytes =
        static_cast<uint32_t>(block.frames * m_microphone->Format().channels * sizeof(short));
    m_notify->OnCaptureAudioData(block.samples, bytes, block.volume, block.voice, block.timeMs);
    if (m_showsVolume) m_showsVolume = m_notify->OnCaptureVolumeVisual(block.volume);
  }

  Microphone* OpenOne() const { return m_microphone.get(); }

 private:
  void EndCalls() {
    if (m_microphone != nullptr) m_microphone->Remove(this);
  }
  void CloseDevice();

  AudioEngine& m_engine;
  // Null while it is not open.
  std::unique_ptr<Microphone> m_microphone;
  IAudioCaptureNotify* m_notify = nullptr;
  bool m_showsVolume = true;
};

class AudioEngine : public IAudioEngine {
 public:
  ~AudioEngine() override { EndSaver(); }

  bool Start(AudioEngineFeature_t feature) override {
    if (feature < AudioEngineFeatureVOIP || feature >= TotalFeatureMode) {
      desktop::LogRefusal("engine: there is no feature %d", feature);
      return false;
    }
    desktop::CleansCapture() =
        feature == AudioEngineFeatureVOIP || feature == AudioEngineFeatureHDVOIP;
    return true;
  }

  IAudioCapture* CreateAudioCapture() override {
    const std::scoped_lock lock(m_capturesMutex);
    m_captures.push_back(std::make_unique<AudioCapture>(*this));
    return m_captures.back().get();
  }

  bool StartAudioSaver(char* file, AudioSaverMode mode, AudioSaverWfMode writing) override {
    if (RefusesInCallback(this, "IAudioEngine::StartAudioSaver")) return false;
    EndSaver();
    const bool append = writing == AudioSaverFileAppend;
    const bool starts = desktop::TryToStart("saver:", [&] {
      return mode == AudioSaverOnlyRender ? SaveRender(file, append)
                                          : SaveCapture(file, SavedOf(mode), append);
    });
    if (!starts) EndSaver();
    return starts;
  }

  void StopAudioSaver() override {
    if (!RefusesInCallback(this, "IAudioEngine::StopAudioSaver")) EndSaver();
  }

  void Destroy() override;

  // A microphone is going to be closed.
  void Leave(const Microphone* microphone) {
    if (microphone != nullptr && microphone == m_savedMicrophone) EndSaver();
  }

  void Delete(const AudioCapture* capture) {
    // Closed after the lock is given back, because closing waits for callbacks.
    std::unique_ptr<AudioCapture> deleted;
    const std::scoped_lock lock(m_capturesMutex);
    const auto found = std::find_if(m_captures.begin(), m_captures.end(),
                                    [&](const auto& own) { return own.get() == capture; });
    deleted = std::move(*found);
    m_captures.erase(found);
  }

 private:
  void EndSaver() {
    m_renderSaver = nullptr;
    m_captureSaver = nullptr;
    m_ownMicrophone = nullptr;
    m_savedMicrophone = nullptr;
  }

  bool SaveRender(const char* file, bool append) {
    auto sink = FileSink::Create(file, Loudspeaker::kFormat, append);
    if (sink == nullptr) return false;
    m_renderSaver = std::make_unique<desktop::RenderSaver>(std::move(sink));
    return true;
  }

  bool SaveCapture(const char* file, CaptureSaver::What what, bool append) {
    Microphone* microphone = OpenCapture();
    const DeviceFormat format = microphone != nullptr ? microphone->Format() : kSaverFormat;
    auto sink = FileSink::Create(file, format, append);
    if (sink == nullptr) return false;
    if (microphone == nullptr) {
      m_ownMicrophone = OpenMicrophone(format);
      microphone = m_ownMicrophone.get();
      if (microphone == nullptr) return false;
    }
    m_savedMicrophone = microphone;
    m_captureSaver = std::make_unique<CaptureSaver>(what, *microphone, std::move(sink));
    return true;
  }

  Microphone* OpenCapture() {
    const std::scoped_lock lock(m_capturesMutex);
    for (const auto& capture : m_captures) {
      if (capture->OpenOne() != nullptr) return capture->OpenOne();
    }
    return nullptr;
  }

  // Guards m_captures: a notify may ask for one more.
  std::mutex m_capturesMutex;
  std::vector<std::unique_ptr<AudioCapture>> m_captures;
  // The microphone of a saver that was started without an open capture.
  std::unique_ptr<Microphone> m_ownMicrophone;
  Microphone* m_savedMicrophone = nullptr;
  std::unique_ptr<CaptureSaver> m_captureSaver;
  std::unique_ptr<desktop::RenderSaver> m_renderSaver;
};

void AudioCapture::CloseDevice() {
  if (m_microphone == nullptr) return;
  m_engine.Leave(m_microphone.get());
  EndCalls();
  m_microphone = nullptr;
}

void AudioCapture::Destroy() {
  if (!RefusesInCallback(this, "IAudioCapture::Destroy")) m_engine.Delete(this);
}

// The engine of the process; it may stay alive to the end.
std::mutex g_mutex;
AudioEngine* g_engine = nullptr;

void AudioEngine::Destroy() {
  if (RefusesInCallback(this, "IAudioEngine::Destroy")) return;
  {
    const std::scoped_lock lock(g_mutex);
    g_engine = nullptr;
  }
  // Waits for callbacks, which may make the next engine.
  delete this;
  const std::scoped_lock lock(g_mutex);
  if (g_engine != nullptr) return;
  desktop::CleansCapture() = false;
  desktop::SetLogListener(nullptr);
}

}  // namespace

IAudioEngine* CreateAudioEngine(const char* /*path*/, int /*flags*/, const char* /*device*/,
                                void (*log)(const char*)) {
  const std::scoped_lock lock(g_mutex);
  desktop::SetLogListener(log);
  if (g_engine == nullptr) {
    g_engine = new AudioEngine;
    desktop::CleansCapture() = false;
  }
  return g_engine;
}
