#pragma once

#include <memory>
#include <string>

#include "../common/visibility.h"

// Plays a stream faster or slower. Belongs to one thread at a time.
class ENGINE_API RateChanger {
 public:
  // keepPitch: true changes the speed alone; false changes the pitch with it, as a tape would.
  explicit RateChanger(bool keepPitch);
  ~RateChanger();
  RateChanger(const RateChanger&) = delete;
  RateChanger& operator=(const RateChanger&) = delete;

  // A new object is disabled: then the samples pass at their own speed.
  void SetEnabled(bool enabled);

  // The speed: 2 plays twice as fast, in half the time. Clamped to 0.25..4; a new object has 1, and
  // a value that is no number is ignored. Applies from the next samples on, without a jump.
  void SetRatio(double ratio);

  // The format, 8 to 48 kHz (rate in Hz), 1 to 8 channels. Forgets the samples of the past. One
  // that cannot be done is one line in the log, and Process gives nothing until the next call.
  void SetFsAndCh(int rate, int channels);

  // Takes `samplesPerChannel` interleaved samples of each channel (channels as set) and replaces
  // `out` by the bytes of the 16-bit samples that are ready: none at first (at most 100 ms of the
  // input wait inside, at ratio 1 none), and none at all before SetFsAndCh.
  void Process(short* samples, int samplesPerChannel, int channels, std::string& out);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
