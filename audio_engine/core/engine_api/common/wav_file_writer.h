#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "visibility.h"

// The canonical header of a PCM WAVE file, as it stands in the file (little-endian).
struct WavHeader {
  char riff[4];        // "RIFF"
  uint32_t riffBytes;  // Of the file, less 8.
  char wave[4];        // "WAVE"
  char fmt[4];         // "fmt "
  uint32_t fmtBytes;   // 16
  uint16_t formatTag;  // 1: integer PCM.
  uint16_t channels;
  uint32_t sampleRate;  // Hz.
  uint32_t bytesPerSecond;
  uint16_t blockAlign;  // Bytes of one sample of every channel.
  uint16_t bitsPerSample;
  char data[4];  // "data"
  uint32_t dataBytes;
};
static_assert(sizeof(WavHeader) == 44);

// Writes finished PCM bytes after a canonical WAVE header. A file that cannot be opened or written
// takes all bytes and keeps none, with one line in the engine's log. Belongs to one thread at a
// time.
class ENGINE_API CWavFileWriter {
 public:
  // Truncates `fileName` and writes a header that announces no data. sampleRate: Hz.
  CWavFileWriter(int sampleRate, int channels, int bitsPerSample, const std::string& fileName);
  ~CWavFileWriter();  // Finishes the header and closes the file.
  CWavFileWriter(const CWavFileWriter&) = delete;
  CWavFileWriter& operator=(const CWavFileWriter&) = delete;

  // Appends `bytes` bytes of interleaved little-endian samples. Nothing happens when bytes is not
  // positive.
  void Write(const void* data, int bytes);

 private:
  FILE* m_ofs = nullptr;
  int m_nTotalBytes = 0;  // Data bytes in the file.
  WavHeader m_wavHeader;
  std::string m_FileName;
  int m_startLength = 0;           // Data bytes before the last write that kept bytes.
  int m_endLength = 0;             // Data bytes after that write.
  bool m_startrecordFlag = false;  // Some data was kept.
  int m_notWav = 0;                // 1 when the file could not be opened or written.
};
