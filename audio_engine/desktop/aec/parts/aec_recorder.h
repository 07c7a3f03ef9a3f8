#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "desktop/aec/parts/delay_tracker.h"
#include "desktop/aec/parts/mono_input.h"
#include "desktop/aec/parts/sample_queue.h"
#include "desktop/devices/background.h"
#include "engine_api/common/wav_file_writer.h"

namespace desktop {

// Writes three streams of 16-bit samples, and what it finds of the first one's echo in the last
// one, into files on a thread of its own. Any thread may call; Record of one stream, one at a time.
class AecRecorder {
 public:
  enum Stream { kFar, kNear, kOut };

  struct Names {
    std::array<std::string, 3> streams;
    std::string delay;
    std::string log;
  };

  // Throws what memory and threads throw. A file that cannot be opened is one line in the log.
  AecRecorder(int rate, int channels, const Names& names);
  ~AecRecorder();  // Finishes.

  // Takes whole frames of interleaved samples without waiting; after 30 s of a disk that stands
  // still it drops them, and after Finish always.
  void Record(Stream stream, const void* data, int bytes);

  void Detect(int rate);  // Looks for echo from now on, at this rate (Hz).
  bool HasEcho() const { return m_hasEcho; }

  void WriteQueued();  // Returns when all that was queued at the call is written.
  void Finish();       // Writes all that is queued, finishes the files and ends the thread.

 private:
  struct Track;
  struct Detection;

  void Run();
  bool WritePiece(Stream stream);
  void WriteAll();
  void StartDetection();
  void LookForEcho(Stream stream, int frames);
  void CloseFiles();
  bool FinishUntil(std::chrono::steady_clock::time_point deadline);

  const int m_rate;
  const int m_channels;
  const Names m_names;
  std::array<std::unique_ptr<Track>, 3> m_tracks;
  FILE* m_delayFile;
  FILE* m_logFile;
  std::unique_ptr<Detection> m_detection;  // The thread's own.
  std::vector<short> m_piece;
  std::vector<short> m_mono;
  std::atomic<int> m_detectRate = 0;
  std::atomic<bool> m_hasEcho = false;
  std::atomic<bool> m_takes = true;

  std::mutex m_mutex;  // For all down to m_done.
  std::condition_variable m_changed;
  bool m_finishAsked = false;
  int m_writesAsked = 0;
  int m_writesDone = 0;
  bool m_done = false;
  std::thread m_thread;
  std::unique_ptr<BackgroundWork> m_background;
};

}  // namespace desktop
