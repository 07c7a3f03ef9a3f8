#include "desktop/aec/parts/aec_recorder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <new>
#include <numeric>
#include <utility>

#include "desktop/common/counts.h"
#include "desktop/common/wav_header.h"
#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

constexpr size_t kQueueSeconds = 30;
constexpr size_t kBlockFrames = 800;
constexpr auto kPause = std::chrono::milliseconds(20);
constexpr int kMaxDelayMs = 500;

File OpenText(const std::string& name) {
  File file(fopen(name.c_str(), "wb"));
  if (!file) OutputDebugInfo("%s: cannot be opened: %s", name.c_str(), strerror(errno));
  return file;
}

void CloseText(File& file, const std::string& name) {
  if (!file) return;
  const bool failed = ferror(file.get()) != 0;
  if (fclose(file.release()) != 0 || failed) {
    OutputDebugInfo("%s: cannot be written", name.c_str());
  }
}

}  // namespace

// One of the streams: what waits, and the mono file that it goes into.
struct AecRecorder::Track {
  Track(size_t capacity, int rate, const std::string& fileName)
      : queue(capacity),
        name(fileName),
        format{rate, 1, 16},
        file(CreateWav(name.c_str(), format, WavBuffer::kNone)) {}
  ~Track() { Close(); }
  Track(const Track&) = delete;
  Track& operator=(const Track&) = delete;

  void Write(const short* samples, size_t count) {
    AppendToWav(file, name.c_str(), format, samples, count * sizeof(short));
  }

  void Close() { FinishWav(std::exchange(file, nullptr), format); }

  SampleQueue queue;
  const std::string name;
  const WavFormat format;
  FILE* file;
};

struct AecRecorder::Detection {
  explicit Detection(int rate)
      : far(rate, 1), out(rate, 1), tracker(MonoInput::TrackedRate(rate), kMaxDelayMs) {}

  MonoInput far;
  MonoInput out;
  DelayTracker tracker;

  // How many frames of the output have come.
  size_t frames = 0;
};

std::unique_ptr<AecRecorder> AecRecorder::Create(int rate, int channels, const Tags& tags) {
  if (rate < 1 || rate > 192000 || channels < 1 || channels > 8) {
    LogRefusal("no recorder for %d Hz, %d channels", rate, channels);
    return nullptr;
  }
  try {
    Names names = {{}, std::string(tags.delay) + ".txt", std::string(tags.log) + ".txt"};
    for (size_t i = 0; i < tags.streams.size(); ++i) {
      names.streams[i] = std::string(tags.streams[i]) + ".wav";
    }
    return std::unique_ptr<AecRecorder>(new AecRecorder(rate, channels, names));
  } catch (const std::bad_alloc&) {
    LogRefusal("no memory for a recorder");
  } catch (const std::exception& error) {
    // There is no thread to be had, or a tag is null.
    LogRefusal("no recorder: %s", error.what());
  }
  return nullptr;
}

AecRecorder::AecRecorder(int rate, int channels, const Names& names)
    : m_rate(rate),
      m_channels(Size(channels)),
      m_names(names),
      m_delayFile(OpenText(names.delay)),
      m_logFile(OpenText(names.log)),
      m_mono(kBlockFrames) {
  const size_t capacity = kQueueSeconds * Size(rate);
  for (size_t i = 0; i < m_tracks.size(); ++i) {
    m_tracks[i] = std::make_unique<Track>(capacity, rate, names.streams[i]);
  }
  m_background = std::make_unique<BackgroundWork>(
      [this](std::chrono::steady_clock::time_point deadline) { return FinishUntil(deadline); });
  // Last, because nothing may throw beside a thread that runs.
  m_thread = std::thread(&AecRecorder::Run, this);
}

AecRecorder::~AecRecorder() {
  m_background.reset();
  Finish();
  m_thread.join();
}

void AecRecorder::Record(Stream stream, const void* data, size_t bytes) {
  if (!m_takes || data == nullptr) return;
  const auto* samples = static_cast<const short*>(data);
  SampleQueue& queue = m_tracks[stream]->queue;
  size_t left = bytes / sizeof(short) / m_channels;
  while (left > 0) {
    short mono[kBlockFrames];
    const size_t frames = std::min(left, kBlockFrames);
    for (size_t i = 0; i < frames; ++i, samples += m_channels) {
      const int sum = std::accumulate(samples, samples + m_channels, 0);
      mono[i] = static_cast<short>(sum / Count(m_channels));
    }
    queue.Push(mono, frames);
    left -= frames;
  }
}

void AecRecorder::Detect(int rate) {
  if (MonoInput::Accepts(rate, 1)) {
    m_detectRate = rate;
  } else {
    LogRefusal("no echo can be detected at %d Hz", rate);
  }
}

void AecRecorder::WriteQueued() {
  std::unique_lock lock(m_mutex);
  const int mine = ++m_writesAsked;
  m_changed.notify_all();
  m_changed.wait(lock, [this, mine] { return m_done || m_writesDone >= mine; });
}

void AecRecorder::Finish() { FinishUntil(std::chrono::steady_clock::time_point::max()); }

bool AecRecorder::FinishUntil(std::chrono::steady_clock::time_point deadline) {
  std::unique_lock lock(m_mutex);
  m_takes = false;
  m_finishAsked = true;
  m_changed.notify_all();
  const auto done = [this] { return m_done; };
  if (deadline != std::chrono::steady_clock::time_point::max()) {
    return m_changed.wait_until(lock, deadline, done);
  }
  m_changed.wait(lock, done);
  return true;
}

void AecRecorder::Run() {
  bool finish = false;
  while (!finish) {
    int writes = 0;
    {
      std::unique_lock lock(m_mutex);
      m_changed.wait_for(lock, kPause,
                         [this] { return m_finishAsked || m_writesAsked > m_writesDone; });
      finish = m_finishAsked;
      writes = m_writesAsked;
    }
    StartDetection();
    WriteAll();
    if (finish) CloseFiles();
    const std::scoped_lock lock(m_mutex);
    m_writesDone = writes;
    m_done = finish;
    if (m_done || writes > 0) m_changed.notify_all();
  }
}

// Writes what is queued a block of each stream at a time, so that detection hears of both ends at
// about the same time.
void AecRecorder::WriteAll() {
  bool more = true;
  while (more) {
    more = false;
    for (const Stream stream : {kFar, kNear, kOut}) more = WriteBlock(stream) || more;
  }
}

bool AecRecorder::WriteBlock(Stream stream) {
  Track& track = *m_tracks[stream];
  const size_t frames = track.queue.Pop(m_mono.data(), m_mono.size());
  if (frames == 0) return false;
  track.Write(m_mono.data(), frames);
  if (m_detection) LookForEcho(stream, frames);
  return true;
}

void AecRecorder::StartDetection() {
  const int rate = m_detectRate.exchange(0);
  if (rate == 0) return;
  try {
    m_detection = std::make_unique<Detection>(rate);
  } catch (const std::bad_alloc&) {
    LogRefusal("no memory to detect echo");
  }
}

void AecRecorder::LookForEcho(Stream stream, size_t frames) {
  Detection& detection = *m_detection;
  if (stream == kNear) return;
  if (stream == kFar) {
    detection.far.Feed(m_mono.data(), frames, [&detection](const short* mono, size_t count) {
      detection.tracker.AddFar(mono, count);
    });
    return;
  }
  detection.out.Feed(m_mono.data(), frames, [&detection](const short* mono, size_t count) {
    detection.tracker.AddNear(mono, count);
  });
  const size_t before = detection.frames / Size(m_rate);
  detection.frames += frames;
  const size_t seconds = detection.frames / Size(m_rate);
  if (seconds == before) return;
  m_hasEcho = detection.tracker.MedianScore() >= DelayTracker::kEchoScore;
  if (!m_delayFile) return;
  fprintf(m_delayFile.get(), "%zu %d\n", seconds, detection.tracker.DelayMs());
}

void AecRecorder::CloseFiles() {
  size_t dropped = 0;
  for (const auto& track : m_tracks) {
    track->Close();
    dropped += track->queue.Dropped();
  }
  if (m_detection) {
    m_hasEcho = m_detection->tracker.MedianScore() >= DelayTracker::kEchoScore;
  }
  if (m_logFile) {
    fprintf(m_logFile.get(), "%d Hz, %zu channels, %zu samples dropped\n", m_rate, m_channels,
            dropped);
    const char* const verdict = !m_detection ? "not looked for" : m_hasEcho ? "yes" : "no";
    fprintf(m_logFile.get(), "echo: %s\n", verdict);
  }
  CloseText(m_delayFile, m_names.delay);
  CloseText(m_logFile, m_names.log);
  OutputDebugInfo("recorder finished, %zu samples dropped", dropped);
}

}  // namespace desktop
