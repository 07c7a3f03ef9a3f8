#pragma once

#include <memory>

#include "../common/visibility.h"

// Records what a canceller gets and gives, on a thread of its own, and looks for echo in what it
// gives. Files in the working folder: far end, near end and output as mono WAVE, the echo's delay
// and a log as text. What the disk does not take within 30 s is dropped, the newest first; one line
// in the engine's log says how much. A full disk is one line as well: the file then holds the
// beginning of what was fed.
class ENGINE_API CAecFileWriter {
 public:
  // The tags give the files' names: "<tag>.wav" for the first three, "<tag>.txt" for delay and log.
  // sampleRate: Hz; channels: of what is fed, interleaved; they are averaged. reserved: 0.
  CAecFileWriter(int sampleRate, int channels, const char* farTag, const char* nearTag,
                 const char* outTag, const char* delayTag, const char* logTag, int reserved);
  ~CAecFileWriter();  // Writes what is still queued and finishes the files.
  CAecFileWriter(const CAecFileWriter&) = delete;
  CAecFileWriter& operator=(const CAecFileWriter&) = delete;

  void EchoDetectionStart(int sampleRate);  // From now on, at this rate (Hz).
  void EchoDetectionEnd();  // Finishes the files at once; the verdict is their log's last line.
  int EchoDetect();         // 1 when the output holds echo of the far end, 0 when not. Any thread.

  // Take `bytes` bytes of 16-bit samples and never wait. Each from one thread.
  void RecordFarendData(const void* data, int bytes);
  void RecordNearendData(const void* data, int bytes);
  void RecordOutData(const void* data, int bytes);

  void WriteAecFiles();  // Returns when all that was queued at the call is in the files.

 private:
  struct Recorder;
  std::unique_ptr<Recorder> m_recorder;
};
