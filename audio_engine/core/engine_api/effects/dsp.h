#pragma once

#include "../common/visibility.h"

// An effect that works on blocks of 16-bit samples in place. Belongs to one thread at a time. The
// order of the virtual operations is fixed: the destructor comes first and fills slots 0 and 1, so
// that Destroy is slot 2.
class ENGINE_API IDSP {
 protected:
  virtual ~IDSP() = default;

 public:
  // Ends the effect's life; the pointer is void afterwards.
  virtual void Destroy() = 0;

  // Processes a block of interleaved signed samples in place and returns how many samples per
  // channel the buffer holds then. `sampleRate` in Hz. `sampleSize`: 16 (bits) and 2 (bytes) both
  // mean 16-bit samples. What an effect cannot process it leaves alone, with one line in the log.
  virtual int Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
                      int sampleSize) = 0;

  // The same over interleaved ints that keep the 16-bit range. `capacity`: how many ints the buffer
  // holds; a block that says to be longer is left alone.
  virtual int Process(int* samples, int samplesPerChannel, int sampleRate, int channels,
                      int sampleSize, int capacity) = 0;

  // Forgets the samples heard so far; the settings stay.
  virtual void Flush() = 0;

  // Whether the effect is switched on; a new one is off and leaves every block as it is.
  virtual bool GetEnabled() = 0;
  virtual void SetEnabled(bool enabled) = 0;

  // Whether Process may change samples at present: switched on, or still fading out.
  virtual bool IsActive() = 0;
};
