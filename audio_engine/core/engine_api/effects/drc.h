#pragma once

#include <memory>

#include "../common/visibility.h"

// A compressor over 10 ms blocks: from -24 dBFS on its output rises by 1 dB for every 3 dB, with a
// knee of 6 dB that begins at -24. Attack 5 ms, release 150 ms; below the threshold exactly unity,
// no make-up gain. All channels share one gain. Belongs to one thread at a time.
class ENGINE_API Drc {
 public:
  Drc();
  ~Drc();
  Drc(const Drc&) = delete;
  Drc& operator=(const Drc&) = delete;

  // Compresses `channels` * `samplesPerChannel` interleaved samples in place. The block is taken to
  // last 10 ms, which says the rate. A count below 1, more than 64 channels or more than 384 kHz:
  // nothing happens (but for one line in the log when there are too many).
  void Process(short* samples, int channels, int samplesPerChannel);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
