#include "engine_api/mixing/karaoke_file_mixer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <string>
#include <thread>

#include "desktop/files/file_sink.h"
#include "desktop/files/open_audio_file.h"
#include "desktop/mixing/karaoke/karaoke_mix.h"
#include "desktop/platform/callback_scope.h"
#include "desktop/platform/log.h"

namespace {

using desktop::DeviceFormat;
using desktop::FileFault;
using desktop::FileSink;
using desktop::FileSource;
using desktop::KaraokeMix;
using desktop::RefusesInCallback;
using std::chrono::steady_clock;

constexpr auto kBetweenReports = std::chrono::milliseconds(100);

// Returns the format of the accompaniment, as far as a file can be written in it.
DeviceFormat FormatOf(const FileSource& music) {
  return {std::clamp(music.Rate(), 8000U, 48000U), std::min(music.Channels(), 2U)};
}

// One run: what is mixed, and where the mix goes. `mix` is null when there is nothing to be mixed.
struct Run {
  std::unique_ptr<KaraokeMix> mix;
  std::unique_ptr<FileSink> sink;
  DeviceFormat format;
};

class KaraokeFileMixer : public IKaraokeFileMixer {
 public:
  ~KaraokeFileMixer() override { KaraokeFileMixer::Stop(); }

  void SetKaraokeFileMixerNotify(IKaraokeFileMixerNotify* notify) override {
    if (!RefusesInCallback(this, "IKaraokeFileMixer::SetKaraokeFileMixerNotify")) m_notify = notify;
  }

  bool Open(char* voiceFile, char* accompanyFile) override {
    std::unique_ptr<FileSource> source;
    m_isOpen = false;
    for (const char* name : {voiceFile, accompanyFile}) {
      if (desktop::OpenAudioFile(name, &source) != FileFault::kNone) return false;
    }
    m_voiceFile = voiceFile;
    m_musicFile = accompanyFile;
    m_isOpen = true;
    return true;
  }

  void SetVoiceOffset(int offset) override { m_settings.offsetMs = offset; }
  void EnableEqualizer(bool enable) override { m_settings.equalizer = enable; }
  void SetEqGains(float* gains) override {
    std::copy_n(gains, std::size(m_settings.gains), m_settings.gains);
  }
  void EnableReverbNew(bool enable) override { m_settings.reverb = enable; }
  void SetReverbFv3Param(NreverbFv3Parameter parameter) override {
    m_settings.reverbParameter = parameter;
  }
  void EnableLimiter(bool enable) override { m_settings.limiter = enable; }
  void SetLimiterParam(LimiterParam parameter) override { m_settings.limiterParameter = parameter; }

  bool Start(char* outputFile) override {
    if (RefusesInCallback(this, "IKaraokeFileMixer::Start")) return false;
    Stop();
    m_stop = false;
    Run run;
    try {
      run = Prepare(outputFile);
      const bool mixes = run.mix != nullptr;
      m_thread = std::thread([this, run = std::move(run)]() mutable { Work(run); });
      return mixes;
    } catch (const std::exception& error) {
      desktop::LogRefusal("karaoke mixer: cannot start: %s", error.what());
      TellEnd();
      return false;
    }
  }

  void Stop() override {
    if (RefusesInCallback(this, "IKaraokeFileMixer::Stop")) return;
    m_stop = true;
    if (m_thread.joinable()) m_thread.join();
  }

  void Destroy() override {
    if (!RefusesInCallback(this, "IKaraokeFileMixer::Destroy")) delete this;
  }

 private:
  // Returns a run without a mix, with one line in the log, when something is missing.
  Run Prepare(const char* outputFile) const {
    Run run;
    if (!m_isOpen) {
      desktop::LogRefusal("karaoke mixer: no files are open");
      return run;
    }
    std::unique_ptr<FileSource> voice;
    std::unique_ptr<FileSource> music;
    if (desktop::OpenAudioFile(m_voiceFile.c_str(), &voice) != FileFault::kNone ||
        desktop::OpenAudioFile(m_musicFile.c_str(), &music) != FileFault::kNone) {
      return run;
    }
    run.format = FormatOf(*music);
    auto converted = desktop::ConvertedSource::Create(std::move(voice), run.format);
    auto convertedMusic = desktop::ConvertedSource::Create(std::move(music), run.format);
    if (converted == nullptr || convertedMusic == nullptr) {
      desktop::LogRefusal("karaoke mixer: cannot bring both files to one format");
      return run;
    }
    run.sink = FileSink::Create(outputFile, run.format, false);
    if (run.sink == nullptr) return run;
    run.mix = std::make_unique<KaraokeMix>(std::move(converted), std::move(convertedMusic),
                                           run.format, m_settings);
    return run;
  }

  void Work(Run& run) {
    try {
      if (run.mix != nullptr) MixAll(run);
    } catch (const std::exception& error) {
      desktop::LogRefusal("karaoke mixer: stopped: %s", error.what());
    }
    run = {};
    TellEnd();
  }

  void TellEnd() const {
    const desktop::CallbackScope scope(this);
    if (m_notify != nullptr) m_notify->OnFinishMixer();
  }

  void MixAll(Run& run) {
    short samples[KaraokeMix::kMaxFrames * 2];
    const auto total = static_cast<uint32_t>(run.mix->Frames() * 1000 / run.format.rate);
    size_t done = 0;
    steady_clock::time_point reported = steady_clock::now();
    while (!m_stop) {
      const size_t frames = run.mix->Next(samples);
      if (frames == 0) break;
      if (!run.sink->Write(samples, frames)) return;
      done += frames;
      if (steady_clock::now() - reported < kBetweenReports) continue;
      reported = steady_clock::now();
      Report(done, run.format, total);
    }
    if (run.sink->Finish()) Report(done, run.format, total);
  }

  void Report(size_t done, DeviceFormat format, uint32_t total) const {
    const auto doneMs = static_cast<uint32_t>(done * 1000 / format.rate);
    const desktop::CallbackScope scope(this);
    if (m_notify != nullptr) m_notify->OnFileMixerState(std::min(doneMs, total), total);
  }

  // The thread reads it, so it is set before a start only.
  IKaraokeFileMixerNotify* m_notify = nullptr;
  bool m_isOpen = false;
  std::string m_voiceFile;
  std::string m_musicFile;
  desktop::VoiceSettings m_settings;
  std::atomic<bool> m_stop = false;
  std::thread m_thread;
};

}  // namespace

IKaraokeFileMixer* IKaraokeFileMixer::Create() { return new KaraokeFileMixer; }
