#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "desktop/aec/parts/delay_tracker.h"
#include "desktop/aec/parts/mono_input.h"
#include "desktop/aec/parts/sample_queue.h"
#include "desktop/common/file.h"
#include "desktop/devices/background.h"

namespace desktop {

// Writes three streams of 16-bit samples, and what it finds of the first one's echo in the last
// one, into files on a thread of its own. Any thread may call; Record of one stream, one at a time.
class AecRecorder {
 public:
  enum Stream { kFar, kNear, kOut };

  // The files are named after these: "<tag>.wav" for the streams, "<tag>.txt" for the others.
  struct Tags {
    std::array<const char*, 3> streams;
    const char* delay;
    const char* log;
  };

  // Null, with one line in the log, for a format that it does not take and where memory or a thread
  // is not to be had. A file that cannot be opened is one line in the log, too.
  static std::unique_ptr<AecRecorder> Create(int rate, int channels, const Tags& tags);

  // Finishes.
  ~AecRecorder();

  // Takes whole frames of interleaved samples without waiting; after 30 s of a disk that stands
  // still it drops them, and after Finish always.
  void Record(Stream stream, const void* data, size_t bytes);

  // Looks for echo from now on, at this rate (Hz).
  void Detect(int rate);
  bool HasEcho() const { return m_hasEcho; }

  // Returns when all that was queued at the call is written.
  void WriteQueued();

  // Writes all that is queued, finishes the files and ends the thread.
  void Finish();

 private:
  struct Names {
    std::array<std::string, 3> streams;
    std::string delay;
    std::string log;
  };

  AecRecorder(int rate, int channels, const Names& names);

  struct Track;
  struct Detection;

  void Run();
  bool WriteBlock(Stream stream);
  void WriteAll();
  void StartDetection();
  void LookForEcho(Stream stream, size_t frames);
  void CloseFiles();
  bool FinishUntil(std::chrono::steady_clock::time_point deadline);

  const int m_rate;
  const size_t m_channels;
  const Names m_names;
  std::array<std::unique_ptr<Track>, 3> m_tracks;
  File m_delayFile;
  File m_logFile;

  // These two belong to the thread.
  std::unique_ptr<Detection> m_detection;
  std::vector<short> m_mono;
  std::atomic<int> m_detectRate = 0;
  std::atomic<bool> m_hasEcho = false;
  std::atomic<bool> m_takes = true;

  // Guards all members down to m_done.
  std::mutex m_mutex;
  std::condition_variable m_changed;
  bool m_finishAsked = false;
  int m_writesAsked = 0;
  int m_writesDone = 0;
  bool m_done = false;
  std::unique_ptr<BackgroundWork> m_background;
  std::thread m_thread;
};

}  // namespace desktop
